#include "interpreter/run/scripttestcase.h"

#include <QDateTime>
#include <QFile>
#include <memory>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/testresult/testvp.h"

namespace Tamrix {

Interpreter* ScriptTestCase::ip = nullptr;
Interpreter* ScriptTestCase::defip = nullptr;

namespace {

/// Whether the script error stems from a failed image or text search, whose picture the interpreter
/// has kept.
bool isSearchError(const QString& message) {
    return message.contains(QLatin1String(" on the screen(s).")) &&
           (message.contains(QLatin1String("Could not find image '")) ||
            message.contains(QLatin1String("Could not find text '")));
}

/// The language in which the steps of a case without a script are written, the first one in the
/// order of the languages; without any steps it is the first language of all.
const ScriptLanguageInformation& languageOfSteps(const QDir& caseDirectory) {
    const std::vector<const ScriptLanguageInformation*> known =
        ScriptLanguageInformation::knownLanguages();
    for (const ScriptLanguageInformation* const language : known) {
        const QStringList pattern(QStringLiteral("*.") + language->suffix);
        for (const char* const folder : {"steps", "../shared/steps"}) {
            if (!QDir(caseDirectory.filePath(QLatin1String(folder)))
                     .entryList(pattern, QDir::Files)
                     .isEmpty())
                return *language;
        }
    }
    return *known.front();
}

}  // namespace

ScriptTestCase::ScriptTestCase(TestResult* result, const QDir& testCaseDirectory,
                               RunnerInterface* runner, const QStringList& scriptArguments)
    : TestCase(result, testCaseDirectory), m_runner(runner), m_scriptArguments(scriptArguments) {}

ScriptTestCase::~ScriptTestCase() {
    // Nothing may point to an interpreter that is gone.
    if (defip != ip)
        delete defip;
    delete ip;
    ip = nullptr;
    defip = nullptr;
}

bool ScriptTestCase::failToLoad(const QString& message, const QString& detail,
                                const QString& path) {
    if (testResult())
        testResult()->addResult(TestResult::Fatal, message, detail, LineInfo(path, -1));
    return false;
}

bool ScriptTestCase::load(const QString& scriptFile, Debugger::DbgMode mode) {
    // 1. The script's absolute path.
    const QString path = QDir::current().absoluteFilePath(scriptFile);
    const QFileInfo file(path);
    // 2. It must be a file,
    if (!file.isFile())
        return failToLoad("Missing file",
                          QString("Test script file %1 does not exist").arg(scriptFile), path);
    // 3. in a language that is known by its suffix,
    const ScriptLanguageInformation* language = ScriptLanguageInformation::forFile(file);
    if (!language)
        return failToLoad("Unidentified language", "Wasn't able to deduce type of language", path);
    m_isFeature = false;
    return loadLanguage(file, *language, mode);
}

bool ScriptTestCase::loadFeature(const QString& featureFile, Debugger::DbgMode mode) {
    const QFileInfo file(QDir::current().absoluteFilePath(featureFile));
    m_isFeature = true;
    return loadLanguage(file, languageOfSteps(testCaseDirectory()), mode);
}

bool ScriptTestCase::loadLanguage(const QFileInfo& file, const ScriptLanguageInformation& language,
                                  Debugger::DbgMode mode) {
    const QString path = file.filePath();
    // 4. whose plug-in can be loaded,
    const ScriptLanguagePlugin plugin(language.pluginName);
    if (!plugin.lastErrorMessage().isEmpty())
        return failToLoad("Failed to load script language plugin", plugin.lastErrorMessage(), path);
    // 5. and makes an interpreter. A plug-in without the factory has told so on standard error.
    std::unique_ptr<Interpreter> interpreter(plugin.interpreter(m_runner));
    if (!interpreter)
        return failToLoad("Failed to create script interpreter", plugin.lastErrorMessage(), path);
    // 6. The new interpreter gets its functions.
    interpreter->initTestFunctions(testResult());
    interpreter->initUtilFunctions();
    // 7. An interpreter of the same language stays, one of another language is replaced.
    if (ip && ip->language() == interpreter->language()) {
        interpreter.reset();
    } else {
        if (defip == ip)
            defip = nullptr;
        delete ip;
        ip = interpreter.release();
    }
    // 8. It is the current and the default one; an earlier default one is not needed any more.
    if (defip != ip)
        delete defip;
    Interpreter::setSelf(ip);
    defip = ip;
    m_scriptFile = file;
    // 9. The suite's shared scripts stand in front of the search path.
    ip->addDefaultSearchPaths(QFileInfo(QDir::cleanPath(
        testCaseDirectory().absoluteFilePath(QStringLiteral("../shared/scripts")))));
    // 10. Mode of the debugger.
    if (Debugger* debugger = ip->debugger()) {
        debugger->setDebuggerMode(mode);
        if (mode == Debugger::Step)
            debugger->setInteractive(true);
    }
    // 11. The script's arguments.
    ip->setScriptArguments(path, m_scriptArguments);
    return true;
}

bool ScriptTestCase::evaluate(const QString& scriptText) {
    const QString path = m_scriptFile.filePath();
    if (!ip->checkSyntax(scriptText, path)) {
        if (testResult())
            testResult()->addResult(TestResult::Fatal, "Syntax error", ip->errorMessage(),
                                    LineInfo(ip->errorFile(path), ip->errorLine()));
        return false;
    }
    if (!ip->evaluate(scriptText, path)) {
        if (testResult() && ip->errorIsSkip())
            testResult()->addSkipEcho(TestResult::Fatal, "Evaluation error", ip->errorMessage(),
                                      ip->errorCallStack());
        else if (testResult())
            testResult()->addResult(QDateTime::currentDateTime(), TestResult::Fatal,
                                    "Evaluation error", ip->errorMessage(), ip->errorCallStack());
        return false;
    }
    return true;
}

bool ScriptTestCase::init() {
    return internalRun(QStringLiteral("init"), true);
}

bool ScriptTestCase::exec() {
    if (!m_isFeature)
        return internalRun(QStringLiteral("main"), false);
    return ip->callLibraryFunction(QStringLiteral("runFeatureFile"),
                                   QStringList(m_scriptFile.filePath())) ||
           reportScriptError();
}

bool ScriptTestCase::cleanup() {
    return internalRun(QStringLiteral("cleanup"), true);
}

bool ScriptTestCase::internalRun(const QString& name, bool optional) {
    TestResult* const result = testResult();
    if (!ip) {
        if (result)
            result->addResult(TestResult::Fatal, "No interpreter",
                              "Can't run '" + name + "' without interpreter", LineInfo());
        return false;
    }

    if (!ip->hasFunction(name)) {
        if (optional)
            return true;
        // A script that is too short to hold the function was never written.
        const char* const text =
            name.length() + 5 > m_scriptFile.size()
                ? "The test script is empty or does not have a '%1' function. Please record a test "
                  "case (via Run > Record Test Case) to create a test script first."
                : "The test script does not have a '%1' function";
        // Line 0 is meant: the message concerns the file, not a place in it.
        if (result)
            result->addResult(TestResult::Fatal, "Missing function", QString(text).arg(name),
                              LineInfo(m_scriptFile.filePath(), 0));
        return false;
    }

    return ip->callFunction(name, ObjectList()) || reportScriptError();
}

bool ScriptTestCase::reportScriptError() {
    TestResult* const result = testResult();
    const QString detail = ip->errorMessage();
    const bool isOfSearch = isSearchError(detail);
    const ResultDetails details = isOfSearch ? ip->errorDetails() : ResultDetails();
    QString message = QStringLiteral("Script Error");
    if (TestVP::wantLogScreenshotForResult(TestSettingsType::s_vpOptions, TestResult::Error)) {
        attachPictures(result, m_runner, details);
        // A null image asks for a fresh picture of the desktop.
        message += TestVP::logScreenshot(m_runner, TestResult::Error,
                                         isOfSearch ? ip->errorImage() : QImage());
    }
    ScriptContext* const context = ScriptContext::current();
    const bool isFixated = context && !context->fixatedResultContexts().empty();
    const std::vector<LineInfo> stack =
        isFixated ? CallStack{context->fixatedResultContexts().back()} : ip->errorCallStack();
    // What runs next stands at its own lines.
    if (isFixated)
        context->dropFixatedResultContexts();
    if (result && ip->errorIsSkip())
        result->addSkipEcho(TestResult::Error, message, detail, stack);
    else if (result)
        result->addResult(QDateTime::currentDateTime(), TestResult::Error, message, detail, stack,
                          QString(), -1, details.explanation);
    return false;
}

QString ScriptTestCase::testScriptName() const {
    return m_scriptFile.fileName();
}

}  // namespace Tamrix
