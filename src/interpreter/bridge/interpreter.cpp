#include "interpreter/bridge/interpreter.h"

#include <QDir>
#include <cstdio>
#include <set>

#include "interpreter/bridge/currentcontextsaver.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/runnerinterface.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

Interpreter* Interpreter::s_self = nullptr;

Interpreter::Interpreter(RunnerInterface* runner) : m_runner(runner) {
    s_self = this;
}

Interpreter::~Interpreter() {
    if (m_debugger)
        m_debugger->shutDown();
    // Also when another interpreter is current: every caller sets it anew.
    s_self = nullptr;
}

void Interpreter::setSelf(Interpreter* interpreter) {
    s_self = interpreter;
    Debugger::setSelf(interpreter ? interpreter->debugger() : nullptr);
}

// The current error

int Interpreter::errorLine() const {
    return m_errorLine;
}

QString Interpreter::errorFile(const QString& fallback) const {
    return m_errorFile.isEmpty() ? fallback : m_errorFile;
}

void Interpreter::clearError() {
    m_errorMessage.clear();
    m_resultMessage.clear();
    m_errorFile.clear();
    m_errorImage = QImage();
    m_makeErrorDetails = nullptr;
    m_errorIsSkip = false;
    m_errorLine = -1;
    m_errorCallStack.clear();
}

ResultDetails Interpreter::errorDetails() const {
    return m_makeErrorDetails ? m_makeErrorDetails() : ResultDetails();
}

void Interpreter::setErrorMessage(const QString& message) {
    m_errorMessage = message;
}

void Interpreter::setResultMessage(const QString& message) {
    m_resultMessage = message;
}

void Interpreter::setErrorLine(int line) {
    m_errorLine = line;
}

void Interpreter::setErrorFile(const QString& file) {
    m_errorFile = file;
}

const std::vector<LineInfo>& Interpreter::errorCallStack() const {
    const LineInfo position(errorFile(QString()), errorLine());
    if (position.isValid() && (m_errorCallStack.empty() || m_errorCallStack.front() != position))
        m_errorCallStack.insert(m_errorCallStack.begin(), position);
    return m_errorCallStack;
}

void Interpreter::setErrorCallStack(const std::vector<LineInfo>& stack) {
    m_errorCallStack = stack;
    std::erase_if(m_errorCallStack, [](const LineInfo& position) { return !position.isValid(); });
}

// Operations with a default for languages that don't need them

void Interpreter::initTestFunctions(TestResult*) {}

void Interpreter::initUtilFunctions() {}

QString Interpreter::addToSearchPath(const QFileInfo&) {
    return {};
}

void Interpreter::setScriptArguments(const QString&, const QStringList& arguments) {
    m_scriptArguments = arguments;
}

void Interpreter::setDebugger(Debugger* debugger) {
    m_debugger = debugger;
}

bool Interpreter::isIDEModeEnabled() const {
    return m_runner->isIDEMode();
}

bool Interpreter::isSelfDefinedVariableName(const QString& name) const {
    return m_selfDefinedVariableNames.contains(name);
}

void Interpreter::addSelfDefinedVariableName(const QString& name) {
    if (!m_selfDefinedVariableNames.contains(name))
        m_selfDefinedVariableNames.append(name);
}

// Search path

void Interpreter::addDefaultSearchPaths(const QFileInfo& sharedScriptsDir) {
    const auto addIfDirectory = [this](const QFileInfo& directory) {
        if (!directory.isDir())
            return;
        const QString error = addToSearchPath(directory);
        if (!error.isEmpty())
            qWarning("Could not add '%s' to the script search path: %s",
                     directory.filePath().toLocal8Bit().constData(),
                     error.toLocal8Bit().constData());
    };
    addIfDirectory(sharedScriptsDir);
    for (const QString& directory : globalScriptDirectories())
        addIfDirectory(QFileInfo(QDir::cleanPath(directory)));
    for (const QString& directory : environmentScriptDirectories())
        addIfDirectory(QFileInfo(QDir::cleanPath(directory)));
}

// Callables

QString Interpreter::registerCallable(SharedPtr<ScriptArgument> callable) {
    const QString identifier = callable->callableIdentifier();
    m_callables.insert(identifier, callable);
    return identifier;
}

QString Interpreter::unregisterCallable(SharedPtr<ScriptArgument> callable) {
    const QString identifier = callable->callableIdentifier();
    return m_callables.remove(identifier) > 0 ? identifier : QString();
}

bool Interpreter::isCallableAvailable(const QString& identifier) const {
    return m_callables.contains(identifier);
}

bool Interpreter::invokeCallable(const QString& identifier) {
    // A copy: the callable may take itself out of the table.
    const SharedPtr<ScriptArgument> callable = m_callables.value(identifier);
    if (!callable || invoke(callable))
        return bool(callable);
    std::fprintf(stderr, "Callable invoke exception: %s\n",
                 m_callbackError.message.toLocal8Bit().constData());
    std::fflush(stderr);
    return false;
}

bool Interpreter::invokeFunction(const QString& name) {
    const CurrentContextSaver saver;
    m_callbackError = {};
    if (callFunction(name, ObjectList()))
        return true;
    m_callbackError = {errorMessage(), errorCallStack()};
    return false;
}

std::vector<LineInfo> Interpreter::interruptedStack() {
    return m_debugger ? m_debugger->callStack() : std::vector<LineInfo>();
}

ScriptContext* Interpreter::scriptContext() {
    return nullptr;
}

bool Interpreter::callLibraryFunction(const QString& name, const QStringList&) {
    setErrorMessage("The language of the test case can't call '" + name + "' without a script");
    return false;
}

bool Interpreter::invoke(SharedPtr<ScriptArgument> callable) {
    const CurrentContextSaver saver;
    m_callbackError = {};
    QString error;
    callable->call({}, &error);
    return error.isEmpty() || failCallback(error);
}

bool Interpreter::failCallback(const QString& message) {
    m_callbackError.message = message;
    return false;
}

void Interpreter::clearCallables() {
    m_callables.clear();
}

// Texts

QString Interpreter::formattedTypeError(const QString& typeName) const {
    if (!m_runner)
        return {};
    QStringList known;
    for (const SharedPtr<ApplicationContext>& context : m_runner->applicationContexts()) {
        if (m_runner->isTypeKnownInContext(typeName, context->id))
            known.append(context->displayString());
    }
    if (known.isEmpty())
        return QStringLiteral("Type '%1' is not known in any ApplicationContext").arg(typeName);
    return QStringLiteral("Type '%1' is known in the following ApplicationContexts: %2")
        .arg(typeName, known.join(QLatin1String("; ")));
}

QString joinArguments(const Signature& signature, const QString& separator) {
    QStringList types;
    for (int index = 0; index < signature.argumentCount(); ++index)
        types.append(signature.argument(index).typeName());
    return types.join(separator);
}

void logDeprecationWarning(Interpreter* interpreter, const Method* method,
                           const QString& arguments) {
    static std::set<const Method*> s_warned;
    if (!interpreter || !interpreter->isIDEModeEnabled())
        return;
    if (!s_warned.insert(method).second)
        return;
    std::fprintf(stderr, "%s%s is deprecated: %s\n", method->name().toUtf8().constData(),
                 arguments.toUtf8().constData(), method->deprecationMessage().toUtf8().constData());
}

}  // namespace Tamrix
