#pragma once

#include <QFileInfo>
#include <QImage>
#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/bridge/scriptargument.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/testresult/lineinfo.h"
#include "platform/testresult/resultdetails.h"

namespace Tamrix {

class Debugger;
class RunnerInterface;
class ScriptContext;
class TestResult;

/// Base of every language's interpreter: the current error, runner and debugger, the script's
/// arguments, the registered callables and the search path. Made by a plug-in's factory, owned by
/// the caller of the factory. Script thread only.
class TAMRIX_EXPORT Interpreter {
public:
    enum Language { JavaScript = 0, Perl = 1, Python = 2, Ruby = 3, Tcl = 4 };

    /// Makes the new object self(); the debugger's self is left as it is. `runner` is not owned and
    /// may be null.
    explicit Interpreter(RunnerInterface* runner);
    /// Shuts the debugger down if one is set, and clears self().
    virtual ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    static Interpreter* self() { return s_self; }
    /// Also makes that interpreter's debugger, or none, the current one.
    static void setSelf(Interpreter* interpreter);
    /// The runner of self(), null without one.
    static RunnerInterface* currentRunner() { return s_self ? s_self->m_runner : nullptr; }

    /// Runs script text. False on failure, with the error fields set; errorLine() is -1 on success.
    virtual bool evaluate(const QString& text, const QString& fileName, int line = 0,
                          int column = 0) = 0;
    /// Runs a script function by name; false on failure, with the error fields set.
    virtual bool callFunction(const QString& name, const ObjectList& arguments) = 0;
    /// Whether the loaded script defines the function.
    virtual bool hasFunction(const QString& name) = 0;
    /// False on a syntax error, with the error fields set.
    virtual bool checkSyntax(const QString& text, const QString& fileName) = 0;
    /// -1 when unknown.
    virtual int errorLine() const;
    /// `fallback` when no file is known.
    virtual QString errorFile(const QString& fallback) const;
    /// Makes a native function visible in the language's global namespace.
    virtual void addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                                   const QStringList& requiredParameters,
                                   const QStringList& optionalParameters,
                                   const QString& description) = 0;
    /// Makes a native class visible.
    virtual void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) = 0;
    /// Called once on a new interpreter; a plug-in binds the result sink here. `result` may be
    /// null.
    virtual void initTestFunctions(TestResult* result);
    /// Called right behind initTestFunctions().
    virtual void initUtilFunctions();
    /// Adds a directory to the language's module path. Returns an error text, empty on success.
    virtual QString addToSearchPath(const QFileInfo& directory);
    virtual Language language() const = 0;
    virtual void setScriptArguments(const QString& scriptPath, const QStringList& arguments);
    /// Keeps a script callable for later, replacing one with the same identifier. Returns the
    /// identifier.
    virtual QString registerCallable(SharedPtr<ScriptArgument> callable);
    /// Returns the identifier, or an empty string when the callable was not registered.
    virtual QString unregisterCallable(SharedPtr<ScriptArgument> callable);
    virtual void clearError();
    virtual void setErrorMessage(const QString& message);
    virtual void setResultMessage(const QString& message);
    virtual void setErrorLine(int line);
    virtual void setErrorFile(const QString& file);
    /// `debugger` is not owned: the plug-in that made it deletes it.
    virtual void setDebugger(Debugger* debugger);
    virtual bool isCallableAvailable(const QString& identifier) const;
    /// Calls a registered callable without arguments. False when it is unknown or raised an error,
    /// which is printed to standard error and kept in callbackError(). An exception that ends the
    /// script passes. ScriptContext::current() is the same afterwards.
    virtual bool invokeCallable(const QString& identifier);
    /// The same for a function of the script; nothing is printed.
    virtual bool invokeFunction(const QString& name);
    /// The context in which its scripts run, owned by the interpreter. Null, as by default, when
    /// the language has none beside those of calls.
    virtual ScriptContext* scriptContext();
    /// Calls a function of the library as a script would that is not there; false on failure, with
    /// the error fields set. By default a language can't.
    virtual bool callLibraryFunction(const QString& name, const QStringList& arguments);

    /// Where the script stands, as positions of results, innermost first. Unlike the debugger's
    /// stack also in the midst of anything, for a process that ends behind it.
    virtual std::vector<LineInfo> interruptedStack();

    RunnerInterface* runner() const { return m_runner; }
    Debugger* debugger() const { return m_debugger; }
    QString errorMessage() const { return m_errorMessage; }
    QString resultMessage() const { return m_resultMessage; }
    /// Whether the error is the one by which a skip ends the script, and no other that came of it.
    bool errorIsSkip() const { return m_errorIsSkip; }
    /// A screenshot of a failed image or text search, logged with the script error; null otherwise.
    QImage errorImage() const { return m_errorImage; }
    void setErrorImage(const QImage& image) { m_errorImage = image; }
    /// What else helps to understand that failure. Made when it is asked for, as scripts may catch
    /// the error; clearError() forgets it.
    ResultDetails errorDetails() const;
    void setErrorDetails(const std::function<ResultDetails()>& make) { m_makeErrorDetails = make; }
    QString scriptName() const { return m_scriptName; }
    void setScriptName(const QString& name) { m_scriptName = name; }
    QStringList scriptArguments() const { return m_scriptArguments; }

    /// The stack of the last error with the error's own position in front.
    const std::vector<LineInfo>& errorCallStack() const;
    /// Stores the valid positions of the stack.
    void setErrorCallStack(const std::vector<LineInfo>& stack);
    void setErrorIsSkip(bool isSkip) { m_errorIsSkip = isSkip; }

    /// Adds, in this order and as far as they are directories: `sharedScriptsDir`, the user's
    /// "GlobalScriptDirs", the parts of TAMRIX_SCRIPT_DIR.
    void addDefaultSearchPaths(const QFileInfo& sharedScriptsDir);

    /// The error of the last callable or function that was invoked.
    struct CallbackError {
        QString message;
        /// Innermost position first; empty when the language did not tell.
        std::vector<LineInfo> callStack;
    };
    const CallbackError& callbackError() const { return m_callbackError; }
    /// Where the error arose that ScriptArgument::call() gives: a language that knows it says so.
    void setCallErrorStack(const std::vector<LineInfo>& stack) {
        m_callbackError.callStack = stack;
    }

    /// Tells in which applications a type is known; empty without a runner.
    QString formattedTypeError(const QString& typeName) const;

    /// Empties the table of callables. A plug-in calls it while its language is still up.
    void clearCallables();

    /// Names that the library itself defines in the script's namespace; the debugger's variable
    /// views leave them out.
    bool isSelfDefinedVariableName(const QString& name) const;
    void addSelfDefinedVariableName(const QString& name);

    /// Asks the runner, which must not be null.
    bool isIDEModeEnabled() const;

    /// Registers the native functions and classes of the library with this interpreter.
    void initNativeAPI();

protected:
    /// Calls without arguments; false with callbackError() set when an error was raised.
    bool invoke(SharedPtr<ScriptArgument> callable);
    bool failCallback(const QString& message);

private:
    static Interpreter* s_self;

    mutable std::vector<LineInfo> m_errorCallStack;
    QString m_errorMessage;
    QImage m_errorImage;
    std::function<ResultDetails()> m_makeErrorDetails;
    QString m_resultMessage;
    bool m_errorIsSkip = false;
    CallbackError m_callbackError;
    int m_errorLine = -1;
    QString m_errorFile;
    Debugger* m_debugger = nullptr;
    RunnerInterface* m_runner;
    QString m_scriptName;
    QStringList m_selfDefinedVariableNames;
    QStringList m_scriptArguments;
    QMap<QString, SharedPtr<ScriptArgument>> m_callables;
};

/// The argument type names of the signature, in order, joined by the separator.
TAMRIX_EXPORT QString joinArguments(const Signature& signature, const QString& separator);

/// In a run that an integrated front end controls, writes once per process and method to standard
/// error that the method is deprecated. `arguments` stands behind the name. Does nothing for a null
/// interpreter.
TAMRIX_EXPORT void logDeprecationWarning(Interpreter* interpreter, const Method* method,
                                         const QString& arguments);

}  // namespace Tamrix
