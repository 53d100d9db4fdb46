#pragma once

#include <QString>
#include <memory>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/noticedfailures.h"
#include "plugins/python/frames.h"
#include "plugins/python/pyref.h"
#include "plugins/python/pythoncontext.h"

namespace Tamrix::PythonPlugin {

class PythonDebugger;

/// The interpreter of one test case on Python's runtime, which lives as long as the process. The
/// script's functions are the globals of a module of its own, "__test__".
class PythonInterpreter final : public LanguageInterpreter {
public:
    /// Throws std::runtime_error when Python can't be started.
    explicit PythonInterpreter(RunnerInterface* runner);
    /// The last one to go undoes what its scripts changed in the runtime.
    ~PythonInterpreter() override;

    /// The interpreter whose scripts run, null when there is none.
    static PythonInterpreter* active() {
        return static_cast<PythonInterpreter*>(LanguageInterpreter::active(Python));
    }

    PythonContext& context() { return *m_context; }
    PythonDebugger& debugger() { return *m_debugger; }
    CodeFiles& files() { return m_files; }

    /// PyErr_Occurred() for the script's thread, which each call asks.
    bool isErrorSet() const {
#if PY_VERSION_HEX < 0x030C0000
        return m_threadState->curexc_type != nullptr;
#else
        return m_threadState->current_exception != nullptr;
#endif
    }

    // Names for scripts. They throw PythonErrorSet when Python refuses.
    /// In the namespace of the library with that name; globally in none.
    void defineIn(const QString& nameSpace, const QString& name, const PyRef& value);

    /// Remembers what Python's exception for a failure stands for. It is told by what it is: what
    /// else is raised on its way is an error.
    void noticeFailure(const PyRef& exception, const ScriptFailure& failure);
    const NoticedFailures<PyRef>& failures() const {
        return m_failures;
    }

    /// The script's globals.
    PyRef moduleNamespace();
    /// From now on compile() gives this code for the text.
    void rememberCode(const QString& text, const QString& fileName, const PyRef& code) {
        m_compiledText = text;
        m_compiledFile = fileName;
        m_compiledCode = code;
    }
    /// Stands for the file of code of which a test wants an exception.
    static const QString codeOfException;
    /// A code object, null with the error indicator set. `start` is one of Python's start symbols,
    /// for a file, an expression or an interactive statement.
    PyRef compile(const QString& text, const QString& fileName, int start);

    /// In the globals of the calling script frame.
    void runFile(const QString& text, const QString& path) override;
    bool isErrorOrdinary() override;
    ScriptError takeError() override;
    void compileOnly(const QString& text, const QString& fileName) override;
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;
    QString addToSearchPath(const QFileInfo& directory) override;
    std::vector<LineInfo> interruptedStack() override;
    LineInfo placeOf(const SharedPtr<ScriptArgument>& function) override;

protected:
    void publishFunctions(const QStringList& names) override;
    void startScript(const QString& path, const QStringList& arguments,
                     const QStringList& folders) override;
    SharedPtr<ScriptArgument> scriptFunction(const QString& name) override;
    SharedPtr<ScriptArgument> libraryFunction(const QString& name) override;
    bool runScript(const QString& text, const QString& fileName) override;
    CallEnd call(const SharedPtr<ScriptArgument>& function, const CallArguments& arguments,
                 const QString& name, bool isCallback) override;
    QString evaluateAtStop(const ScriptFrame* frame, const QString& code) override;
    TimeLimit::Expired endOfEvaluation() override;
    void errorUncaught() override;

private:
    PyRef nameSpaceObject(const QString& name);
    /// Whether a call of a script function ran it. A coroutine or generator has only been made: the
    /// error fields then say what to do.
    bool hasRun(const QString& name, PyObject* function, PyObject* result);

    PyThreadState* m_threadState = nullptr;
    CodeFiles m_files;
    std::unique_ptr<PythonContext> m_context;
    std::unique_ptr<PythonDebugger> m_debugger;
    PyRef m_module;
    NoticedFailures<PyRef> m_failures;
    /// The text that was compiled last, so that checking and evaluating compile it once.
    QString m_compiledText;
    QString m_compiledFile;
    PyRef m_compiledCode;
    /// The script's globals from before the first script: what init scripts defined.
    PyRef m_initialNames;
};

}  // namespace Tamrix::PythonPlugin
