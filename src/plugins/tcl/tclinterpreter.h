#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/scriptfailure.h"
#include "interpreter/language/sourcefiles.h"
#include "plugins/tcl/errornotes.h"
#include "plugins/tcl/heldvalues.h"
#include "plugins/tcl/tclinternals.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class ClassCommands;
class TclContext;
class TclDebugger;

/// How script code came to its end beside what Tcl has: these pass commands that handle errors, and
/// `finally` runs on their way.
enum EndCode {
    FatalEnd = 1001,  ///< a failure that ends the case; the result is its text
    ExitEnd = 1002    ///< `exit`; the result is the status
};

/// The interpreter of one test case. Each has an interpreter of Tcl of its own, in which nothing is
/// left of what others did.
class TclInterpreter final : public LanguageInterpreter {
public:
    /// Throws std::runtime_error when Tcl can't be started.
    explicit TclInterpreter(RunnerInterface* runner);
    ~TclInterpreter() override;

    static TclInterpreter* active() {
        return static_cast<TclInterpreter*>(LanguageInterpreter::active(Interpreter::Tcl));
    }

    Tcl_Interp* tcl() const { return m_tcl; }
    SourceFiles& files() { return m_files; }
    HeldValues& values() { return *m_values; }
    ClassCommands& classes() { return *m_classes; }
    TclContext& tclContext() { return *m_context; }
    TclDebugger& debugger() { return *m_debugger; }

    // Commands

    /// What a command does with its words, the first of which is its name. How it ends is the
    /// value, as of finish(), or what unwinds native code in it.
    using Command = std::function<int(int count, Tcl_Obj* const* words)>;
    /// Makes a global command of the name, or one of the ensemble in front of "::". It is deleted
    /// with the interpreter of Tcl.
    void defineCommand(const QString& name, Command command);
    /// The same of a function that has its data from Tcl.
    template <typename Data>
    void defineCommand(const QString& name, Tcl_ObjCmdProc* command, std::unique_ptr<Data> data) {
        Tcl_CreateObjCommand(m_tcl, pathForName(name).constData(), command, data.release(),
                             [](void* own) { delete static_cast<Data*>(own); });
    }
    bool hasCommand(const QString& name) const;
    void defineVariable(const QString& name, int value);

    /// The end of a command: what Tcl gets of a result or failure.
    int finish(const ScriptResult& result);
    int fail(const ScriptFailure& failure);
    /// The end of a command that a ScriptErrorSet has ended.
    int failAsPending();
    /// All commands are being ended, by Ctrl-C: nothing may catch what they fail with.
    bool isUnwinding() const;
    /// A native function is to be unwound, so that the script gets the state that Tcl has now. The
    /// stack that a person is told leaves out the outermost `outer` frames, which only wait for it.
    [[noreturn]] void throwPending(int code, std::size_t outer = 0);
    /// The same unless code of the script has come to its end.
    void check(int code, std::size_t outer = 0);
    /// Raises an error with the text in the native function that runs.
    [[noreturn]] void throwError(const QString& text) { throwPending(fail(badArgument(text))); }

    // Running

    // These throw ScriptErrorSet; the result is Tcl's.
    /// Runs words as a command, a callable's in front.
    void run(Tcl_Obj* function, const CallArguments& arguments);
    /// Calls a procedure of the prelude, by its name behind "::tamrix::", with texts and with a
    /// value behind them.
    TclRef callPrelude(QStringList words, Tcl_Obj* value = nullptr);
    /// At the top level.
    void runFile(const QString& text, const QString& path) override {
        check(evaluateFile(m_tcl, text, path));
    }
    bool isErrorOrdinary() override;
    ScriptError takeError() override;
    /// What a person is told of the error that has just been raised.
    QString errorText() const;
    /// The frames that run commands of scripts, the innermost first.
    std::vector<TclFrame> frames() { return framesOfScripts(runningFrames(m_tcl)); }
    /// The same, and the running procedure where no command is known.
    std::vector<TclFrame> framesOrProcedure();
    /// Without those of Tcl's library, and with the paths that results have.
    std::vector<TclFrame> framesOfScripts(const std::vector<TclFrame>& frames);

    bool checkSyntax(const QString& text, const QString& fileName) override;
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;
    QString addToSearchPath(const QFileInfo& directory) override;
    bool invokeCallable(const QString& identifier) override;
    bool invokeFunction(const QString& name) override;
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
    void forgetEndOfEvaluation() override;

private:
    void createTcl();
    void deleteTcl();
    /// The global name of a command or variable, whose ensemble is made when it is the first in it.
    QByteArray pathForName(const QString& name);
    /// What a handler of an event has raised, by `result` and `options`, is an error of the case,
    /// and an end of the script ends it.
    void tellLateErrors();
    int takeLateError(Tcl_Obj* result, Tcl_Obj* options);
    /// Runs code of the script from outside. Throws ScriptErrorSet as that does, and when Tcl gives
    /// up.
    template <typename Work>
    auto guarded(Work work);
    /// What Tcl tells of the error that has just been raised; empty when it does not.
    std::string errorOption(const char* name) const;
    std::vector<TclFrame> framesOfError();
    static std::vector<LineInfo> stackOf(const std::vector<TclFrame>& frames,
                                         std::size_t outer = 0);
    /// The place of an error that Tcl tells no other of: in the procedure that was called.
    std::vector<LineInfo> placeInCalled(int code);

    Tcl_Interp* m_tcl = nullptr;
    std::unique_ptr<HeldValues> m_values;
    std::unique_ptr<ClassCommands> m_classes;
    std::unique_ptr<TclContext> m_context;
    std::unique_ptr<TclDebugger> m_debugger;
    std::unique_ptr<ErrorNotes> m_errors;
    SourceFiles m_files;

    /// What throwPending() has put aside.
    Tcl_InterpState m_pendingState = nullptr;
    /// The end of the script by a handler of an event, which everything that runs is unwound for.
    Tcl_InterpState m_lateEnd = nullptr;
    int m_pendingCode = TCL_OK;
    std::size_t m_pendingOuter = 0;
    /// Where a failure arose that ends the case, and whether it is a skip.
    std::vector<TclFrame> m_fatalFrames;
    bool m_fatalIsSkip = false;
    /// The text of an error that stands in a file that is none of Tcl's, and where.
    QString m_originText;
    LineInfo m_origin;
    /// The name of the procedure that the library has called, while it runs or has failed.
    TclRef m_called;
    /// Runs of script code in each other.
    int m_depth = 0;
};

}  // namespace Tamrix::TclPlugin
