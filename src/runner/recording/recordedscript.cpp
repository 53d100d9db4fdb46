#include "runner/recording/recordedscript.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "base/filewriting.h"
#include "interpreter/bridge/scriptlanguage.h"

namespace Tamrix {

RecordedScript::RecordedScript(std::unique_ptr<EventRecorder> language, Tell tell)
    : m_language(std::move(language)), m_tell(std::move(tell)) {}

Outcome<> RecordedScript::check(const QString& path) {
    if (QFileInfo::exists(path))
        return fail(FailureKind::BadArgument, QStringLiteral("'%1' is there already").arg(path));
    // The folders that are missing are made in the innermost that is there.
    QFileInfo folder(QFileInfo(path).path());
    while (!folder.exists() && folder.path() != folder.filePath())
        folder.setFile(folder.path());
    if (!folder.isDir())
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' can't be written: '%2' is no folder")
                        .arg(path, folder.filePath()));
    if (!folder.isWritable())
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' can't be written: nothing can be made in the folder '%2'")
                        .arg(path, folder.filePath()));
    return {};
}

Outcome<> RecordedScript::create(const QString& path) {
    if (!QDir().mkpath(QFileInfo(path).path()))
        return fail(FailureKind::Failed,
                    QStringLiteral("The folder '%1' can't be made").arg(QFileInfo(path).path()));
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return fail(
            FailureKind::Failed,
            QFileInfo::exists(path)
                ? QStringLiteral("'%1' is there already").arg(path)
                : QStringLiteral("'%1' can't be written: %2").arg(path, m_file.errorString()));
    return {};
}

void RecordedScript::begin() {
    write(m_language->header());
}

void RecordedScript::add(const ScriptAction& action) {
    write(m_language->lines(action));
}

void RecordedScript::end() {
    m_tell(m_language->footer());
    m_file.close();
}

void RecordedScript::write(const QString& text) {
    m_tell(text);
    if (!m_file.isOpen() || !m_result)
        return;
    // The new lines and the end go over the old end, which is shorter, in one piece.
    const QByteArray lines = text.toUtf8();
    QString error;
    const bool isWritten =
        m_file.seek(m_end) && writeAll(&m_file, lines + m_language->footer().toUtf8(), &error);
    m_end += lines.size();
    if (!isWritten)
        m_result = fail(FailureKind::Failed,
                        QStringLiteral("'%1' can't be written: %2").arg(m_file.fileName(), error));
}

Outcome<std::unique_ptr<EventRecorder>> scriptWriter(const QString& languageName,
                                                     const QString& namesModule) {
    const ScriptLanguageInformation* const language =
        ScriptLanguageInformation::forLanguageName(languageName);
    if (!language)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is no language of scripts").arg(languageName));
    const ScriptLanguagePlugin plugin(language->pluginName);
    if (!plugin.lastErrorMessage().isEmpty())
        return fail(FailureKind::Failed, plugin.lastErrorMessage());
    std::unique_ptr<EventRecorder> writer(plugin.eventRecorder(false, false, false, namesModule));
    if (!writer)
        return fail(FailureKind::Failed,
                    QStringLiteral("No scripts are recorded in %1").arg(language->name));
    return writer;
}

QString scriptSuffix(const QString& languageName) {
    const ScriptLanguageInformation* const language =
        ScriptLanguageInformation::forLanguageName(languageName);
    return language ? language->suffix : QString();
}

}  // namespace Tamrix
