#include "runner/mcp/session/recording.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>

#include "base/filewriting.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "platform/testresult/secrets.h"

namespace Tamrix::Mcp {

namespace {

const QString& defaultLanguage() {
    static const QString s_language = QStringLiteral("py");
    return s_language;
}

/// A shorter password may be a word that stands in other texts, too.
constexpr int shortestTelling = 6;

/// Of a folder that all commands take as a case, and that a person can type.
bool isFolderName(const QString& name) {
    return !name.isEmpty() && !name.startsWith(QLatin1Char('.')) &&
           !name.startsWith(QLatin1Char('-')) &&
           std::none_of(name.begin(), name.end(), [](QChar character) {
               return character == QLatin1Char('/') || character.category() == QChar::Other_Control;
           });
}

/// Without the indentation that all lines have, and without the last line feed.
QString atTheLeft(const QString& lines) {
    QStringList each = lines.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    int indentation = lines.size();
    for (const QString& line : qAsConst(each)) {
        const auto first = std::find_if(line.cbegin(), line.cend(),
                                        [](QChar character) { return !character.isSpace(); });
        indentation = std::min(indentation, static_cast<int>(first - line.cbegin()));
    }
    for (QString& line : each)
        line.remove(0, indentation);
    return each.join(QLatin1Char('\n'));
}

}  // namespace

Recording::Recording() = default;
Recording::~Recording() = default;

void Recording::restart() {
    m_actions.clear();
    m_file.clear();
}

QString Recording::linesOf(const ScriptAction& action) {
    if (!m_writer && !useLanguage(defaultLanguage()))
        return {};
    return atTheLeft(m_writer->lines(action));
}

void Recording::addPassword(const QString& password, const QString& key) {
    if (!password.isEmpty())
        m_passwords.insert(password, key);
}

bool Recording::holdsPassword(const QString& text) const {
    // In names they stand in another form.
    const Secrets passwords(m_passwords.keys());
    return std::any_of(
        passwords.forms().begin(), passwords.forms().end(), [&](const QString& password) {
            return text == password || text.contains(QLatin1Char('\'') + password + QLatin1Char('\'')) ||
                   (password.size() >= shortestTelling && text.contains(password));
        });
}

ActionValue Recording::withoutPassword(const ActionValue& value) const {
    const auto* const text = std::get_if<QString>(&value);
    const auto known = text ? m_passwords.constFind(*text) : m_passwords.constEnd();
    return known == m_passwords.constEnd() ? value : ActionValue(PasswordKey{*known});
}

ScriptAction Recording::withoutPasswords(ScriptAction action) const {
    if (auto* const call = std::get_if<FunctionAction>(&action)) {
        for (ActionValue& argument : call->arguments)
            argument = withoutPassword(argument);
    } else if (auto* const expectation = std::get_if<ExpectAction>(&action)) {
        for (auto& [name, value] : expectation->properties)
            value = withoutPassword(value);
    }
    return action;
}

Outcome<QString> Recording::add(const ScriptAction& given) {
    const ScriptAction action = withoutPasswords(given);
    m_actions.push_back(action);
    if (!m_file.isEmpty()) {
        if (const Outcome<> written = write(); !written)
            return fail(written.error());
    }
    return linesOf(action);
}

Outcome<> Recording::useLanguage(const QString& language) {
    const ScriptLanguageInformation* const known =
        ScriptLanguageInformation::forLanguageName(language);
    if (!known)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("there is no script language '%1'").arg(language));
    const ScriptLanguagePlugin plugin(known->pluginName);
    if (!plugin.lastErrorMessage().isEmpty())
        return fail(FailureKind::Refused, QStringLiteral("no scripts in %1 can be written: %2")
                                              .arg(known->name, plugin.lastErrorMessage()));
    std::unique_ptr<EventRecorder> writer(plugin.eventRecorder(false, false, false, QString()));
    if (!writer)
        return fail(FailureKind::Refused,
                    QStringLiteral("scripts in %1 can't be written yet").arg(known->name));
    m_writer = std::move(writer);
    m_suffix = known->suffix;
    return {};
}

Outcome<> Recording::writeTo(const QString& suite, const QString& testCase,
                             const QString& language) {
    if (!isFolderName(testCase))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is no name for a test case's folder").arg(testCase));
    if (const Outcome<> used = useLanguage(language.isEmpty() ? defaultLanguage() : language);
        !used)
        return used;
    const QDir folder(QDir(suite).absoluteFilePath(testCase));
    const QString file = folder.filePath(QStringLiteral("test.") + m_suffix);
    if (QFileInfo::exists(file) && !m_ownFiles.contains(file))
        return fail(FailureKind::Refused,
                    QStringLiteral("'%1' is there already: take another case").arg(file));
    if (!folder.mkpath(QStringLiteral(".")))
        return fail(FailureKind::Failed,
                    QStringLiteral("the folder '%1' can't be made").arg(folder.path()));
    const QString before = std::exchange(m_file, file);
    const Outcome<> written = write();
    if (written)
        m_ownFiles.append(file);
    else
        m_file = before;
    return written;
}

Outcome<> Recording::write() const {
    QString text = m_writer->header();
    for (const ScriptAction& action : m_actions)
        text += m_writer->lines(action);
    text += m_writer->footer();
    QSaveFile file(m_file);
    QString reason;
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && writeAll(&file, text.toUtf8(), &reason) && file.commit();
    if (isWritten)
        return {};
    return fail(FailureKind::Failed,
                QStringLiteral("'%1' can't be written: %2")
                    .arg(m_file, reason.isEmpty() ? file.errorString() : reason));
}

}  // namespace Tamrix::Mcp
