#include "platform/objectmodel/objectmap.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/mapfile.h"
#include "platform/objectmodel/nameresolver.h"
#include "platform/objectmodel/serializedmap.h"

namespace Tamrix {

namespace {

/// Properties whose values are texts, and never the name of another object.
constexpr const char* textProperties[] = {"text",        "name",    "objectName",
                                          "type",        "title",   "windowTitle",
                                          "placeholder", "toolTip", "occurrence"};

/// The longest part of what an object shows that its symbolic name has.
constexpr int longestLabel = 40;

std::unique_ptr<ObjectMap>& mapInUse() {
    static std::unique_ptr<ObjectMap> s_map = std::make_unique<ObjectMap>();
    return s_map;
}

/// Tells two states of a file apart; empty when there is none.
QString stampOf(const QString& path) {
    const QFileInfo file(path);
    return file.exists() ? QStringLiteral("%1 %2").arg(
                               QString::number(file.lastModified().toMSecsSinceEpoch()),
                               QString::number(file.size()))
                         : QString();
}

/// Whether a real name may refer to names of the map at all.
bool mayRefer(const QString& name) {
    return name.contains(QLatin1String("':"));
}

}  // namespace

ObjectMap* ObjectMap::self() {
    return mapInUse().get();
}

void ObjectMap::use(std::unique_ptr<ObjectMap> map) {
    mapInUse() = map ? std::move(map) : std::make_unique<ObjectMap>();
}

// Names

Outcome<ObjectName> ObjectMap::resolve(const QString& name) {
    const QString key = keyOf(name);
    // A map may take its time to bring its entries: only for names that need them.
    const Outcome<> updated = !key.isEmpty() || mayRefer(name) ? update() : Outcome<>();
    Outcome<ObjectName> resolved = resolveName(m_names, key.isEmpty() ? name : key);
    if (!resolved && !updated) {
        return fail(FailureKind::Failed,
                    QStringLiteral("%1: %2").arg(resolved.error().text, updated.error().text));
    }
    return resolved;
}

ObjectName ObjectMap::objectName(const QString& name) {
    return Inspector::self()->take(resolve(name));
}

QString ObjectMap::realName(const QString& name) {
    const ObjectName resolved = objectName(name);
    return resolved.isValid() ? resolved.qualifiedName() : QString();
}

QString ObjectMap::realName(SharedPtr<Object> object) {
    return object ? object->realName() : QString();
}

QString ObjectMap::symbolicName(const QString& name, bool createIfMissing) {
    const ObjectName wanted = objectName(name);
    if (!wanted.isValid())
        return {};
    const QString key = keyOf(name);
    if (!key.isEmpty())
        return key;
    if (!Inspector::self()->take(update()))
        return {};
    const QString known = keyOfResolved(wanted);
    if (!known.isEmpty() || !createIfMissing)
        return known;
    const QString made = newKey(wanted);
    insert(made, wanted);
    m_madeNames.append(made);
    return made;
}

QString ObjectMap::symbolicName(SharedPtr<Object> object, bool createIfMissing) {
    return object ? symbolicName(object->realName(), createIfMissing) : QString();
}

Outcome<QStringList> ObjectMap::symbolicNames() {
    if (const Outcome<> updated = update(); !updated)
        return fail(updated.error());
    return m_names.keys();
}

Outcome<QMap<QString, ObjectName>> ObjectMap::names() {
    if (const Outcome<> updated = update(); !updated)
        return fail(updated.error());
    return m_names;
}

// New entries

Outcome<QString> ObjectMap::add(const SharedPtr<Object>& object) {
    if (m_path.isEmpty())
        return fail(FailureKind::Refused,
                    QStringLiteral("There is no object map in use to which a name can be added"));
    const MapFileLock lock(m_path);
    // 1. What others have written meanwhile counts.
    if (QFileInfo::exists(m_path)) {
        if (const Outcome<> loaded = loadIfChanged(m_path); !loaded)
            return fail(loaded.error());
    }
    // 2. The object's name; one that stands in the file already is all.
    const QString key = symbolicName(object, true);
    if (key.isEmpty())
        return fail(Inspector::self()->lastFailure());
    if (!m_madeNames.contains(key))
        return key;
    // 3. The new entry. What can't be written is no name.
    const Outcome<> written = writeEntry(key);
    m_madeNames.removeAll(key);
    if (!written) {
        m_names.remove(key);
        m_hasKeys = false;
        return fail(written.error());
    }
    return key;
}

Outcome<> ObjectMap::writeEntry(const QString& key) {
    QFile file(m_path);
    const bool exists = file.exists();
    if (exists && !file.open(QIODevice::ReadOnly)) {
        return fail(FailureKind::Failed, QStringLiteral("The object map '%1' can't be read: %2")
                                             .arg(m_path, file.errorString()));
    }
    const Outcome<QByteArray> content =
        contentWith(exists ? file.readAll() : QByteArray(), key, referring(m_names.value(key)));
    if (!content)
        return fail(content.error());
    if (const Outcome<> replaced = replaceFile(m_path, *content); !replaced)
        return replaced;
    m_fileStamp = stampOf(m_path);
    return {};
}

Outcome<QByteArray> ObjectMap::contentWith(const QByteArray& content, const QString& key,
                                           const ObjectName& name) {
    return withEntry(content, serialized({{key, name.qualifiedName()}}));
}

QString ObjectMap::keyOf(const QString& name) const {
    return isSymbolicName(name) ? name : QString();
}

/// For people: text or name, and type. A name of the map gets a number behind it.
QString ObjectMap::newKey(const ObjectName& name) {
    const auto properties = name.properties();
    QString label;
    for (const char* const property : {"text", "name", "objectName", "title"}) {
        if (label.isEmpty())
            label = properties.value(QLatin1String(property)).text().simplified();
    }
    label.truncate(longestLabel);
    const QString type = properties.value(QStringLiteral("type")).text();
    if (!label.isEmpty() && !type.isEmpty())
        label += '_';
    label += type;
    const QString base = ':' + (label.isEmpty() ? QStringLiteral("Object") : label);
    QString key = base;
    for (int number = 2; m_names.contains(key); ++number)
        key = base + '_' + QString::number(number);
    return key;
}

// Entries

void ObjectMap::setEntries(const QMap<QString, ObjectName>& names) {
    QMap<QString, ObjectName> made;
    for (const QString& key : qAsConst(m_madeNames)) {
        if (!names.contains(key))
            made.insert(key, m_names.value(key));
    }
    m_names = names;
    m_madeNames = made.keys();
    m_hasKeys = false;
    for (auto it = made.cbegin(); it != made.cend(); ++it)
        m_names.insert(it.key(), it.value());
}

void ObjectMap::insert(const QString& key, const ObjectName& name) {
    m_names.insert(key, name);
    if (m_hasKeys && !m_keys.contains(name.qualifiedName()))
        m_keys.insert(name.qualifiedName(), key);
}

QString ObjectMap::keyOfResolved(const ObjectName& name) {
    if (!m_hasKeys) {
        m_keys.clear();
        // The first of several keys counts.
        for (auto it = m_names.cbegin(); it != m_names.cend(); ++it) {
            const Outcome<ObjectName> resolved = resolveName(m_names, it.key());
            if (resolved && !m_keys.contains(resolved->qualifiedName()))
                m_keys.insert(resolved->qualifiedName(), it.key());
        }
        m_hasKeys = true;
    }
    return m_keys.value(name.qualifiedName());
}

ObjectName ObjectMap::referring(const ObjectName& name) {
    QMap<QString, PropertyValue> properties = name.properties();
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        if (!it->isRealName() || !isMultiPropertyName(it->text()) || isTextProperty(it.key()))
            continue;
        const ObjectName nested(it->text());
        const QString key = keyOfResolved(nested);
        // What stands in no file is no reference for one.
        *it = key.isEmpty() || m_madeNames.contains(key)
                  ? PropertyValue(referring(nested).qualifiedName(), PropertyValue::Plain, true)
                  : PropertyValue(key, PropertyValue::Plain, false);
    }
    return ObjectName(properties);
}

// The file

Outcome<> ObjectMap::load(const QString& path) {
    ObjectMap::clear();
    m_path = path;
    // In front of the reading: what is written meanwhile counts as a change.
    m_fileStamp = stampOf(path);
    const Outcome<QMap<QString, ObjectName>> names = readMapFile(path);
    if (!names)
        return fail(names.error());
    setEntries(*names);
    return {};
}

Outcome<> ObjectMap::loadIfChanged(const QString& path) {
    const QString stamp = stampOf(path);
    if (stamp == m_fileStamp && (path == m_path || stamp.isEmpty()))
        return {};
    // A faulty file is not read once more before it has changed again.
    m_fileStamp = stamp;
    m_path = path;
    const Outcome<QMap<QString, ObjectName>> names = readMapFile(path);
    if (!names)
        return fail(names.error());
    setEntries(*names);
    return {};
}

void ObjectMap::clear() {
    m_madeNames.clear();
    setEntries({});
    m_path.clear();
    m_fileStamp.clear();
}

// The text form

QMap<QString, ObjectName> ObjectMap::parseSerializedMap(const QString& text, QString* error) {
    const SerializedMap map = parseMap(text);
    if (error) {
        QStringList lines;
        for (const auto& fault : map.faults)
            lines.append(QStringLiteral("line %1: ").arg(fault.line) + fault.text);
        *error = lines.join('\n');
    }
    return map.names;
}

QString ObjectMap::escapeForSerialize(const QString& text) {
    QString escaped = text;
    escaped.replace('\\', QLatin1String("\\\\"))
        .replace('\t', QLatin1String("\\t"))
        .replace('\n', QLatin1String("\\n"));
    return escaped;
}

QString ObjectMap::serialized(const QMap<QString, QString>& realNames) {
    QStringList lines;
    for (auto it = realNames.cbegin(); it != realNames.cend(); ++it)
        lines.append(escapeForSerialize(it.key()) + '\t' + escapeForSerialize(it.value()));
    return lines.join('\n');
}

bool isTextProperty(const QString& property) {
    const auto isThis = [&](const char* each) { return property == QLatin1String(each); };
    return std::any_of(std::begin(textProperties), std::end(textProperties), isThis);
}

}  // namespace Tamrix
