#include "interpreter/language/stepfiles.h"

#include <QDir>
#include <QFileInfo>

#include "interpreter/bridge/scriptlanguage.h"
#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/sourcefiles.h"
#include "interpreter/language/stepactions.h"
#include "interpreter/language/stepregistry.h"

namespace Tamrix {

namespace {

/// Relative to the folder of the case.
constexpr const char* folders[] = {"steps", "../shared/steps"};

/// While it exists, stepping does not lead into the code of files that are loaded: what a person
/// steps through is the feature. Break points stop there all the same, and what is commanded then
/// holds.
class StepsOverLoading {
public:
    explicit StepsOverLoading(Debugger& debugger)
        : m_debugger(debugger), m_mode(debugger.debuggerMode()) {
        if (m_mode == Debugger::Step || m_mode == Debugger::Next)
            m_debugger.setDebuggerMode(Debugger::Run);
    }
    ~StepsOverLoading() {
        if (m_debugger.debuggerMode() == Debugger::Run)
            m_debugger.setDebuggerMode(m_mode);
    }
    StepsOverLoading(const StepsOverLoading&) = delete;
    StepsOverLoading& operator=(const StepsOverLoading&) = delete;

private:
    Debugger& m_debugger;
    Debugger::DbgMode m_mode;
};

}  // namespace

StepFiles::State StepFiles::stateOf(const QString& path) {
    const QFileInfo info(path);
    return {info.lastModified(), info.size()};
}

QStringList StepFiles::files() const {
    const QStringList pattern(
        QStringLiteral("*.") +
        ScriptLanguageInformation::forLanguage(m_interpreter.language())->suffix);
    QStringList paths;
    for (const char* const folder : folders) {
        const QDir directory(QDir::cleanPath(QDir(m_caseFolder).filePath(QLatin1String(folder))));
        const QStringList names =
            directory.entryList(pattern, QDir::Files | QDir::Readable, QDir::Name);
        for (const QString& name : names)
            paths += Debugger::sanitizedFilePath(directory.filePath(name));
    }
    return paths;
}

QString StepFiles::load(const QString& featureFile) {
    const QString script = m_interpreter.scriptName();
    m_caseFolder = QFileInfo(script.isEmpty() ? featureFile : script).absolutePath();
    // What the files import of each other lies beside them.
    for (const char* const folder : folders) {
        const QFileInfo directory(
            QDir::cleanPath(QDir(m_caseFolder).filePath(QLatin1String(folder))));
        if (directory.isDir())
            m_interpreter.addToSearchPath(directory);
    }
    for (const QString& path : files()) {
        if (m_loaded.contains(path))
            continue;
        // Another file may have imported it, by which it has registered what it has.
        if (m_language.isLoaded(path)) {
            m_loaded[path] = stateOf(path);
            continue;
        }
        const QString error = loadFile(path);
        if (!error.isEmpty())
            return error;
    }
    return {};
}

void StepFiles::clear() {
    if (!m_loaded.isEmpty())
        m_language.forgetFiles(m_loaded.keys());
    m_loaded.clear();
}

QString StepFiles::loadChanged() {
    for (const QString& path : files()) {
        const auto loaded = m_loaded.constFind(path);
        if (loaded != m_loaded.constEnd() && *loaded == stateOf(path))
            continue;
        const QString error = loadFile(path);
        if (!error.isEmpty())
            return error;
    }
    return {};
}

QString StepFiles::loadFile(const QString& path) {
    m_registry.forget(path);
    m_loaded[path] = stateOf(path);
    const Outcome<QString> text = readSource(path);
    if (!text)
        return text.error().text;
    const StepsOverLoading stepsOver(m_interpreter.languageDebugger());
    const std::optional<ScriptError> error = m_language.loadFile(path, *text);
    return error ? placedText(*error, LineInfo(path, 0)) : QString();
}

}  // namespace Tamrix
