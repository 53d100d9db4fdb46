#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <vector>

#include "interpreter/bridge/interpreter.h"
#include "platform/objectmodel/inspector.h"
#include "plugins/python/frames.h"
#include "plugins/python/pyref.h"
#include "plugins/python/pythoncontext.h"
#include "plugins/python/scriptoutput.h"

namespace Tamrix::PythonPlugin {

class BddActions;
class PythonDebugger;

/// The interpreter of one test case on Python's runtime, which lives as long as the process. The
/// script's functions are the globals of a module of its own, "__test__".
class PythonInterpreter final : public Interpreter {
public:
    /// Throws std::runtime_error when Python can't be started.
    explicit PythonInterpreter(RunnerInterface* runner);
    /// The last one to go undoes what its scripts changed in the runtime.
    ~PythonInterpreter() override;

    /// The interpreter whose scripts run, null when there is none.
    static PythonInterpreter* active() { return s_active; }

    PythonContext& context() { return *m_context; }
    PythonDebugger& debugger() { return *m_debugger; }
    SourceFiles& files() { return m_files; }
    ScriptOutput& output() { return m_output; }
    BddActions& bdd() { return *m_bdd; }
    /// Whether the calling thread is the one on which the interpreter was made.
    bool isScriptThread() const { return __builtin_thread_pointer() == m_scriptThread; }

    /// PyErr_Occurred() for the script's thread, which each call asks.
    bool isErrorSet() const {
#if PY_VERSION_HEX < 0x030C0000
        return m_threadState->curexc_type != nullptr;
#else
        return m_threadState->current_exception != nullptr;
#endif
    }

    // Names for scripts. They throw PythonErrorSet when Python refuses.
    void defineGlobal(const QString& name, const PyRef& value);
    void defineInNamespace(const QString& nameSpace, const QString& name, const PyRef& value);
    /// A member function of the Python class that stands for the library's class.
    void defineMember(const QString& className, const QString& name, const PyRef& function);

    /// Makes the global functions of the current application known when it is another one than
    /// before. Each call of a native function asks, since any of them may have changed it.
    void noticeApplication() {
        if (Inspector::self()->model() != m_knownModel)
            publishFunctionsOfApplication();
    }

    /// Remembers the exception by which test.skip() ends the script. It is told by what it is: what
    /// else is raised on its way is an error.
    void setSkip(const PyRef& exception) {
        m_skip = exception;
    }
    bool isSkip(PyObject* exception) const {
        return m_skip && exception == m_skip.get();
    }

    /// An error of a native function stands in a file that is none of Python's, such as a feature
    /// file: remembers the exception that it became.
    void setErrorOrigin(const PyRef& exception, const LineInfo& position) {
        m_originOf = exception;
        m_errorOrigin = position;
    }

    /// How a function of the script came out that a native function has called.
    enum class Callback { Succeeded, Pending, Failed };
    /// Calls a function of the script while a native function runs. Unless it succeeds the error
    /// fields tell what happened, with the whole stack; what ends the script passes as
    /// PythonErrorSet. `named` may be null.
    Callback callBack(PyObject* function, PyObject* arguments, PyObject* named);

    /// The script's globals.
    PyRef moduleNamespace();
    /// From now on compile() gives this code for the text.
    void rememberCode(const QString& text, const QString& fileName, const PyRef& code) {
        m_compiledText = text;
        m_compiledFile = fileName;
        m_compiledCode = code;
    }
    /// A code object, null with the error indicator set. `start` is one of Python's start symbols,
    /// for a file, an expression or an interactive statement.
    PyRef compile(const QString& text, const QString& fileName, int start);

    bool evaluate(const QString& text, const QString& fileName, int line, int column) override;
    bool callFunction(const QString& name, const ObjectList& arguments) override;
    bool hasFunction(const QString& name) override;
    bool checkSyntax(const QString& text, const QString& fileName) override;
    void addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                           const QStringList& requiredParameters,
                           const QStringList& optionalParameters,
                           const QString& description) override;
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;
    void initTestFunctions(TestResult* result) override;
    QString addToSearchPath(const QFileInfo& directory) override;
    Language language() const override {
        return Python;
    }
    bool invokeFunction(const QString& name) override;
    ScriptContext* scriptContext() override {
        return m_context.get();
    }
    bool callLibraryFunction(const QString& name, const QStringList& arguments) override;
    void setScriptArguments(const QString& scriptPath, const QStringList& arguments) override;

private:
    /// Code that a person writes while the script stands still, the innermost frame first. The
    /// result's text is that of what became of it.
    bool evaluateAt(const std::vector<ScriptFrame>& frames, const QString& text);
    /// The same with the script's globals, where no code of a script runs.
    bool evaluateInScript(const QString& text);
    bool tellEvaluation(const Outcome<QString>& result);
    /// The end of a run of script code: true when it gave a value or ended through sys.exit(),
    /// otherwise the error fields tell what happened.
    bool finish(const PyRef& result, bool hasFile = true);
    /// Whether a call of a script function ran it. A coroutine or generator has only been made: the
    /// error fields then say what to do.
    bool hasRun(const QString& name, PyObject* function, PyObject* result);
    /// The error stands where the function is defined.
    void setErrorPosition(PyObject* function);
    /// Takes away what an earlier script has left: its names, its callbacks, its end by sys.exit().
    void startScript();
    PyRef scriptFunction(const QString& name);
    void publishFunctionsOfApplication();

    static PythonInterpreter* s_active;
    static std::vector<PythonInterpreter*> s_instances;

    void* m_scriptThread;
    PyThreadState* m_threadState = nullptr;
    SourceFiles m_files;
    ScriptOutput m_output;
    std::unique_ptr<PythonContext> m_context;
    std::unique_ptr<PythonDebugger> m_debugger;
    PyRef m_module;
    PyRef m_skip;
    PyRef m_originOf;
    LineInfo m_errorOrigin;
    std::unique_ptr<BddActions> m_bdd;
    /// Only compared: it may be gone.
    ObjectModel* m_knownModel = nullptr;
    /// The text that was compiled last, so that checking and evaluating compile it once.
    QString m_compiledText;
    QString m_compiledFile;
    PyRef m_compiledCode;
    bool m_exited = false;
    /// The script's globals from before the first script: what init scripts defined.
    PyRef m_initialNames;
};

}  // namespace Tamrix::PythonPlugin
