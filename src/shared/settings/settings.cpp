#include "shared/settings/settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

#include "base/environment.h"
#include "base/standardpath.h"
#include "shared/settings/valuesyntax.h"

namespace Tamrix {

namespace {

constexpr const char* encoding = "UTF-8";

constexpr const char* userFiles[] = {
    "server.ini", "webwrapper.ini", "tkwrapper.ini", "paths.ini", "ocr.ini", "resulthubcmd.ini",
};

constexpr const char* globalFiles[] = {"tamrix.ini", "paths.ini"};

template <std::size_t count>
QString fileName(const char* const (&files)[count], int type) {
    return type >= 0 && type < static_cast<int>(count) ? QString::fromLatin1(files[type])
                                                       : QString();
}

QString normalizeKey(QString key) {
    if (key.startsWith('/'))
        key.remove(0, 1);
    if (key.endsWith('/'))
        key.chop(1);
    key.replace('=', '_');
    // One pass: "a///b" becomes "a//b".
    key.replace(QLatin1String("//"), QLatin1String("/"));
    return key;
}

}  // namespace

Settings::Settings(const QString& path) : m_path(path) {
    parse();
}

Settings::Settings(const QString& directory, const QString& file)
    : Settings(directory + '/' + file) {}

Settings::~Settings() {
    if (m_dirty)
        flush();
}

Settings::Settings(const Settings& other)
    : m_groups(other.m_groups),
      m_path(other.m_path),
      m_expandEnvironment(other.m_expandEnvironment) {}

Settings& Settings::operator=(const Settings& other) {
    if (this == &other)
        return *this;
    // What was changed here belongs to the old file.
    if (m_dirty)
        flush();
    m_groups = other.m_groups;
    m_path = other.m_path;
    m_dirty = false;
    m_expandEnvironment = other.m_expandEnvironment;
    return *this;
}

QString Settings::settingsDir() {
    return QDir::homePath();
}

QString Settings::tamrixSettingsDir() {
    QString directory = Environment::getVariable(QStringLiteral("TAMRIX_USER_SETTINGS_DIR"));
    if (directory.isEmpty())
        directory = QDir::homePath() + QStringLiteral("/.tamrix");
    QDir().mkpath(directory);
    return directory;
}

QString Settings::userSettingsDir() {
    return tamrixSettingsDir() + QStringLiteral("/ver1");
}

QString Settings::defaultGroup() {
    return QStringLiteral("General");
}

void Settings::parse() {
    QFile file(m_path);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qWarning("Tamrix::Settings::parse: could not open file `%s' for reading",
                 m_path.toLocal8Bit().constData());
        return;
    }
    QTextStream stream(&file);
    stream.setCodec(encoding);

    auto group = m_groups.end();
    while (!stream.atEnd()) {
        QString line = stream.readLine().trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;

        if (line.startsWith('[')) {
            line.remove(0, 1);
            if (line.endsWith(']'))
                line.chop(1);
            // Meant: a second header of the same name replaces the group, it doesn't merge.
            group = m_groups.insert(line, {});
            continue;
        }

        // A bad line ends the parse; what was read so far stays.
        if (group == m_groups.end()) {
            qWarning("Tamrix::Settings::parse: in file %s: line `%s' not in a group",
                     m_path.toLocal8Bit().constData(), line.toLocal8Bit().constData());
            return;
        }
        const int separator = line.indexOf('=');
        if (separator < 0) {
            qWarning("Tamrix::Settings::parse: in file %s: corrupted line `%s' in group `%s'",
                     m_path.toLocal8Bit().constData(), line.toLocal8Bit().constData(),
                     group.key().toLocal8Bit().constData());
            return;
        }
        group->insert(line.left(separator).trimmed(), line.mid(separator + 1));
    }
}

bool Settings::flush() {
    const QDir directory = QFileInfo(m_path).dir();
    if (!directory.exists() && !directory.mkpath(directory.absolutePath())) {
        qWarning("Tamrix::Settings::flush: could not create directory `%s'.",
                 directory.absolutePath().toLocal8Bit().constData());
        return false;
    }

    // The old file stays until the new one is complete, or is overwritten where no second file may
    // be made beside it.
    QSaveFile file(m_path);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        qWarning("Tamrix::Settings::flush: could not open file `%s' for writing",
                 m_path.toLocal8Bit().constData());
        return false;
    }
    QTextStream stream(&file);
    stream.setCodec(encoding);
    for (auto group = m_groups.cbegin(); group != m_groups.cend(); ++group) {
        stream << '[' << group.key() << "]\n";
        for (auto entry = group->cbegin(); entry != group->cend(); ++entry)
            stream << entry.key() << " = " << entry->trimmed() << '\n';
        stream << '\n';
    }
    stream.flush();
    if (!file.commit()) {
        qWarning("Tamrix::Settings::flush: could not write file `%s': %s",
                 m_path.toLocal8Bit().constData(), file.errorString().toLocal8Bit().constData());
        return false;
    }
    return true;
}

bool Settings::hasGroup(const QString& group) const {
    return m_groups.contains(group);
}

QStringList Settings::groupList() const {
    return m_groups.keys();
}

bool Settings::readRawEntry(const QString& group, const QString& key, QString* raw) const {
    const auto entries = m_groups.constFind(group);
    if (entries == m_groups.cend())
        return false;
    const auto entry = entries->constFind(normalizeKey(key));
    if (entry == entries->cend())
        return false;
    *raw = *entry;
    return true;
}

QString Settings::readEntry(const QString& group, const QString& key,
                            const QString& defaultValue) const {
    QString value;
    if (!readRawEntry(group, key, &value) || !unquoteString(value, m_path))
        return defaultValue;
    if (m_expandEnvironment)
        expandEnvironmentVariables(value);
    return value;
}

QStringList Settings::readListEntry(const QString& group, const QString& key,
                                    const QStringList& defaultValue) const {
    QString raw;
    QStringList values;
    if (!readRawEntry(group, key, &raw) || !unquoteStringList(raw, &values, m_path))
        return defaultValue;
    if (m_expandEnvironment) {
        for (QString& value : values)
            expandEnvironmentVariables(value);
    }
    return values;
}

int Settings::readNumEntry(const QString& group, const QString& key, int defaultValue) const {
    QString raw;
    if (!readRawEntry(group, key, &raw))
        return defaultValue;
    bool ok = false;
    const int value = raw.trimmed().toInt(&ok);
    return ok ? value : defaultValue;
}

double Settings::readDoubleEntry(const QString& group, const QString& key,
                                 double defaultValue) const {
    QString raw;
    if (!readRawEntry(group, key, &raw))
        return defaultValue;
    bool ok = false;
    const double value = raw.trimmed().toDouble(&ok);
    return ok ? value : defaultValue;
}

bool Settings::readBoolEntry(const QString& group, const QString& key, bool defaultValue) const {
    QString value;
    if (!readRawEntry(group, key, &value))
        return defaultValue;
    value = value.trimmed();
    if (value.endsWith('"'))
        value.chop(1);
    if (value.startsWith('"'))
        value.remove(0, 1);

    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    if (isNumber)
        return number != 0;
    value = value.toUpper();
    if (value == QLatin1String("FALSE"))
        return false;
    if (value == QLatin1String("TRUE"))
        return true;
    return defaultValue;
}

QStringList Settings::entryList(const QString& group, const QString& prefix) const {
    return subkeyOrEntryList(group, prefix, false);
}

QStringList Settings::subkeyList(const QString& group, const QString& prefix) const {
    return subkeyOrEntryList(group, prefix, true);
}

QStringList Settings::subkeyOrEntryList(const QString& group, const QString& prefix,
                                        bool subkeys) const {
    QString start = normalizeKey(prefix);
    if (!start.isEmpty())
        start += '/';

    QStringList found;
    const QMap<QString, QString> entries = m_groups.value(group);
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        const QString& key = entry.key();
        if (!key.startsWith(start))
            continue;
        const int levelEnd = key.indexOf('/', start.size());
        if (!subkeys && levelEnd < 0)
            found.append(key.mid(start.size()));
        if (subkeys && levelEnd >= 0) {
            const QString level = key.mid(start.size(), levelEnd - start.size());
            if (!found.contains(level))
                found.append(level);
        }
    }
    return found;
}

void Settings::writeRawEntry(const QString& group, const QString& key, const QString& raw) {
    m_groups[group][normalizeKey(key)] = raw;
    m_dirty = true;
}

void Settings::writeEntry(const QString& group, const QString& key, const QString& value) {
    writeRawEntry(group, key, quoteString(value));
}

void Settings::writeEntry(const QString& group, const QString& key, const char* value) {
    writeEntry(group, key, QString::fromUtf8(value));
}

void Settings::writeEntry(const QString& group, const QString& key, const QStringList& values) {
    QStringList quoted;
    for (const QString& value : values)
        quoted.append(quoteString(value));
    writeRawEntry(group, key, quoted.join(','));
}

void Settings::writeEntry(const QString& group, const QString& key, int value) {
    writeRawEntry(group, key, QString::number(value));
}

void Settings::writeEntry(const QString& group, const QString& key, double value) {
    writeRawEntry(group, key, QString::number(value, 'g', 6));
}

void Settings::writeEntry(const QString& group, const QString& key, bool value) {
    writeRawEntry(group, key, value ? QStringLiteral("1") : QStringLiteral("0"));
}

void Settings::removeEntry(const QString& group, const QString& key) {
    const auto entries = m_groups.find(group);
    if (entries == m_groups.end()) {
        qWarning("Tamrix::Settings::removeEntry: group '%s' not found in %s",
                 group.toLocal8Bit().constData(), m_path.toLocal8Bit().constData());
        return;
    }
    entries->remove(normalizeKey(key));
    m_dirty = true;
}

UserSettings::UserSettings(UserSettingsType type)
    : Settings(userSettingsDir(), fileName(userFiles, static_cast<int>(type))) {}

GlobalSettings::GlobalSettings(GlobalSettingsType type)
    : Settings(StandardPath::prefix() + QStringLiteral("/etc"),
               fileName(globalFiles, static_cast<int>(type))) {}

}  // namespace Tamrix
