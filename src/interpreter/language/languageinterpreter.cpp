#include "interpreter/language/languageinterpreter.h"

#include <QRegularExpression>
#include <algorithm>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/nativefunction.h"
#include "interpreter/language/stepactions.h"
#include "interpreter/objects/globalfunctions.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

LanguageInterpreter* LanguageInterpreter::s_active[5] = {};
std::vector<LanguageInterpreter*> LanguageInterpreter::s_instances;

namespace {

LineInfo positionOf(const ScriptFrame& frame) {
    return LineInfo(frame.file, frame.line);
}

}  // namespace

QString placedText(const ScriptError& error, const LineInfo& otherwise) {
    const LineInfo place = error.callStack.empty() ? otherwise : error.callStack.front();
    if (!place.isValid() && place.fileName().isEmpty())
        return error.message;
    return QStringLiteral("%1:%2: %3")
        .arg(place.fileName(), QString::number(place.lineNumber()), error.message);
}

LanguageInterpreter::LanguageInterpreter(RunnerInterface* runner, Language language)
    : Interpreter(runner), m_language(language), m_scriptThread(__builtin_thread_pointer()) {
    s_instances.push_back(this);
    s_active[language] = this;
}

LanguageInterpreter::~LanguageInterpreter() {
    leaveActive();
}

void LanguageInterpreter::begin(LanguageContext& context, LanguageDebugger& debugger,
                                std::unique_ptr<StepLanguage> steps) {
    m_context = &context;
    m_languageDebugger = &debugger;
    m_stepLanguage = std::move(steps);
    m_steps = std::make_unique<StepActions>(*this, *m_stepLanguage);
    setDebugger(&debugger);
    try {
        registerFunctions();
    } catch (...) {
        // Nothing may point to an interpreter that is not made.
        end();
        throw;
    }
}

void LanguageInterpreter::registerFunctions() {
    context().initFunctions();
    initNativeAPI();
    publishFunctionsOfApplication();
}

bool LanguageInterpreter::end() {
    if (m_steps) {
        m_output.flush();
        clearCallables();
        m_steps->clear();
        languageDebugger().shutDown();
        setDebugger(nullptr);
        if (ScriptContext::current() == &context())
            ScriptContext::setCurrent(nullptr);
        m_steps.reset();
        m_stepLanguage.reset();
    }
    return std::none_of(s_instances.begin(), s_instances.end(),
                        [this](const LanguageInterpreter* each) {
                            return each != this && each->m_language == m_language;
                        });
}

void LanguageInterpreter::leaveActive() {
    std::erase(s_instances, this);
    s_active[m_language] = nullptr;
    for (LanguageInterpreter* const each : s_instances) {
        if (each->m_language == m_language)
            s_active[m_language] = each;
    }
}

void LanguageInterpreter::print(Language language, ScriptOutput::Stream stream,
                                const QString& text) {
    if (LanguageInterpreter* const interpreter = active(language))
        interpreter->output().write(stream, text);
    else
        ScriptOutput::writeToProcess(stream, text);
}

ScriptContext* LanguageInterpreter::scriptContext() {
    return &context();
}

void LanguageInterpreter::initTestFunctions(TestResult* result) {
    context().setTestResult(result);
    m_output.setTestResult(result);
}

void LanguageInterpreter::publishFunctionsOfApplication() {
    m_knownModel = m_inspector->model();
    publishFunctions(globalFunctionNames(m_knownModel));
}

void LanguageInterpreter::addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                                            const QStringList& requiredParameters,
                                            const QStringList& optionalParameters,
                                            const QString& description) {
    context().define(NativeFunction(
        context(), {name, {}, requiredParameters, optionalParameters, description}, function));
}

// The script

void LanguageInterpreter::setScriptArguments(const QString& scriptPath,
                                             const QStringList& arguments) {
    Interpreter::setScriptArguments(scriptPath, arguments);
    setScriptName(scriptPath);
    m_exited = false;
    clearCallables();
    m_steps->clear();
    // A module that findFile() finds is the one that the language finds.
    try {
        startScript(scriptPath, arguments,
                    scriptSearchFolders() + QStringList(QFileInfo(scriptPath).absolutePath()));
    } catch (const ScriptErrorSet&) {
        qWarning("The script can't be started: %s", takeError().message.toLocal8Bit().constData());
    }
    m_hasStarted = true;
}

void LanguageInterpreter::compileOnly(const QString&, const QString&) {}

bool LanguageInterpreter::checkSyntax(const QString& text, const QString& fileName) {
    clearError();
    return runCode(true, [&] { compileOnly(text, fileName); });
}

bool LanguageInterpreter::hasFunction(const QString& name) {
    // A script that has ended by itself lacks nothing.
    return scriptFunction(name) || m_exited;
}

bool LanguageInterpreter::callFunction(const QString& name, const ObjectList& arguments) {
    clearError();
    const SharedPtr<ScriptArgument> function = scriptFunction(name);
    // After an exit only the cleaning up is left to do.
    if (m_exited && (name != "cleanup" || !function))
        return true;
    if (!function) {
        setErrorMessage("The script has no function '" + name + "'");
        return false;
    }
    CallArguments values;
    for (const SharedPtr<Object>& argument : arguments)
        values.positional.push_back(context().createObject(argument));
    ScriptContext::setCurrent(&context());
    return callFromOutside(function, values, name) == CallEnd::Succeeded;
}

bool LanguageInterpreter::invokeFunction(const QString& name) {
    const SharedPtr<ScriptArgument> function = scriptFunction(name);
    if (function)
        return invoke(function);
    return m_exited || failCallback("The script has no function '" + name + "'");
}

bool LanguageInterpreter::callLibraryFunction(const QString& name, const QStringList& arguments) {
    clearError();
    if (m_exited)
        return true;
    ScriptContext::setCurrent(&context());
    const SharedPtr<ScriptArgument> function = libraryFunction(name);
    if (!function) {
        setErrorMessage("The library has no function '" + name + "'");
        return false;
    }
    CallArguments values;
    for (const QString& argument : arguments)
        values.positional.push_back(context().createString(argument));
    return callFromOutside(function, values, name) == CallEnd::Succeeded;
}

LanguageInterpreter::CallEnd LanguageInterpreter::callFromOutside(
    const SharedPtr<ScriptArgument>& function, const CallArguments& arguments,
    const QString& name) {
    const CallEnd end = call(function, arguments, name, false);
    if (end == CallEnd::Succeeded || !errorCallStack().empty())
        return end;
    // A call that was refused has come to no line.
    if (const LineInfo place = placeOf(function); place.isValid()) {
        setErrorFile(place.fileName());
        setErrorLine(place.lineNumber());
        setErrorCallStack({place});
    }
    return end;
}

LanguageInterpreter::CallEnd LanguageInterpreter::callBack(
    const SharedPtr<ScriptArgument>& function, const CallArguments& arguments) {
    clearError();
    const CallEnd end = call(function, arguments, QString(), true);
    if (end == CallEnd::Succeeded)
        return end;
    // A call that was refused has come to no line.
    if (errorCallStack().empty()) {
        if (const LineInfo place = placeOf(function); place.isValid()) {
            setErrorFile(place.fileName());
            setErrorLine(place.lineNumber());
        }
    }
    std::vector<LineInfo> stack = errorCallStack();
    for (const ScriptFrame& frame : languageDebugger().frames())
        stack.push_back(positionOf(frame));
    setErrorCallStack(stack);
    return end;
}

// Code that a person writes at a stop

bool LanguageInterpreter::evaluate(const QString& text, const QString& fileName, int, int) {
    clearError();
    // The debugger evaluates without stops, where the script stands.
    if (fileName.isEmpty() && languageDebugger().debuggerMode() == Debugger::None) {
        const std::vector<ScriptFrame> frames = languageDebugger().frames();
        if (!frames.empty())
            return evaluateWhereItStands(frames, text);
    }
    ScriptContext::setCurrent(&context());
    if (fileName.isEmpty() && !m_hasStarted)
        m_initScripts.append(text);
    return runScript(text, fileName);
}

Outcome<QString> LanguageInterpreter::evaluated(const ScriptFrame* frame, const QString& code) {
    QString value;
    bool hasFailed = false;
    bool wasEnded = false;
    {
        TimeLimit limit(endOfEvaluation());
        TimeLimit* const outer = languageDebugger().exchangeEvaluation(&limit);
        try {
            value = evaluateAtStop(frame, code);
        } catch (const ScriptErrorSet&) {
            hasFailed = true;
        }
        languageDebugger().exchangeEvaluation(outer);
        wasEnded = limit.wasExpired();
    }
    // Behind the limit, which would end what the language does for it.
    const QString message = hasFailed ? takeError().message : QString();
    if (wasEnded)
        forgetEndOfEvaluation();
    if (!hasFailed)
        return value;
    // What the language says of its end tells nobody anything.
    return fail(FailureKind::Failed,
                wasEnded ? QStringLiteral("The evaluation was ended before it was done") : message);
}

bool LanguageInterpreter::evaluateWhereItStands(const std::vector<ScriptFrame>& frames,
                                                const QString& text) {
    // As in the paths of variables, "^N" in front means the frame N levels outwards.
    static const QRegularExpression s_level(QStringLiteral("^\\^(\\d+)\\s"));
    const QRegularExpressionMatch level = s_level.match(text);
    bool isNumber = true;
    const std::size_t index = level.hasMatch() ? level.captured(1).toUInt(&isNumber) : 0;
    Outcome<QString> result =
        fail(FailureKind::NotFound,
             QStringLiteral("There is no frame %1 levels outwards").arg(level.captured(1)));
    if (isNumber && index < frames.size()) {
        // A feature file has no names of its own: those of the code that runs it are meant.
        const auto frame =
            std::find_if(frames.begin() + static_cast<std::ptrdiff_t>(index), frames.end(),
                         [](const ScriptFrame& each) { return each.isOfLanguage(); });
        result =
            evaluated(frame != frames.end() ? &*frame : nullptr, text.mid(level.capturedLength()));
    }
    m_output.flush();
    setResultMessage(result ? *result : result.error().text);
    if (!result)
        setErrorMessage(result.error().text);
    return bool(result);
}

// The end of script code

bool LanguageInterpreter::failWithPending(bool hasFile, bool* isPendingStep) {
    // What it has printed stands in front of what a debugger tells.
    m_output.flush();
    errorUncaught();
    const ScriptError error = takeError();
    if (isPendingStep)
        *isPendingStep = error.isPendingStep;
    return failWith(error, hasFile);
}

bool LanguageInterpreter::failAt(const LineInfo& place, const QString& message) {
    ScriptError error;
    error.message = message;
    error.callStack = {place};
    return failWith(error);
}

bool LanguageInterpreter::succeed() {
    m_output.flush();
    return true;
}

bool LanguageInterpreter::failWith(const ScriptError& error, bool hasFile) {
    m_output.flush();
    if (error.isExit) {
        m_exited = true;
        return true;
    }
    setErrorMessage(error.message);
    setErrorIsSkip(error.isSkip);
    if (error.callStack.empty() || !hasFile) {
        // Code without a file has a line all the same, which tells that it failed. Where else the
        // error stands, the message tells.
        setErrorLine(error.outermostLine);
        if (!error.callStack.empty())
            setErrorMessage(QStringLiteral("%1\nin %2:%3")
                                .arg(error.message, error.callStack.front().fileName(),
                                     QString::number(error.callStack.front().lineNumber())));
        return false;
    }
    setErrorFile(error.callStack.front().fileName());
    setErrorLine(error.callStack.front().lineNumber());
    // A runaway recursion has thousands of lines; the innermost ones tell enough.
    constexpr std::size_t mostStackLines = 100;
    std::vector<LineInfo> stack = error.callStack;
    stack.resize(std::min(stack.size(), mostStackLines));
    setErrorCallStack(stack);
    return false;
}

}  // namespace Tamrix
