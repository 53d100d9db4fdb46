#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "interpreter/bridge/callarguments.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/scriptfailure.h"
#include "interpreter/language/scriptoutput.h"
#include "interpreter/language/timelimit.h"
#include "platform/objectmodel/inspector.h"

namespace Tamrix {

class LanguageContext;
class LanguageDebugger;
class NativeFunction;
class StepActions;
class StepLanguage;
struct ScriptFrame;

/// What ended a run of script code, as a person is told.
struct ScriptError {
    /// "NAME: text" or what the language says, with what led to it below.
    QString message;
    /// Lines of scripts, the innermost first; those of the language's own library are left out.
    std::vector<LineInfo> callStack;
    /// The line of the outermost code that was running, also of code without a file; 0 without.
    int outermostLine = 0;
    /// The script has ended by itself, and not for a failure.
    bool isExit = false;
    /// It is the failure by which a skip ends the case.
    bool isSkip = false;
    /// It tells of a step that is still to be written.
    bool isPendingStep = false;
};

/// "FILE:LINE: MESSAGE", with the innermost line of the stack, or the other place without a stack;
/// the message alone when that is invalid.
TAMRIX_EXPORT QString placedText(const ScriptError& error, const LineInfo& otherwise = LineInfo());

/// The texts of an exception and of those that led to it, which `nextOf` gives as an optional; a
/// few of them, as they may lead to each other.
template <typename Exception, typename TextOf, typename NextOf>
QString textWithCauses(const Exception& exception, TextOf textOf, NextOf nextOf) {
    constexpr int mostCauses = 5;
    QString text = textOf(exception);
    auto cause = nextOf(exception);
    for (int count = 0; cause && count < mostCauses; ++count) {
        text += "\ncaused by " + textOf(*cause);
        cause = nextOf(*cause);
    }
    return text;
}

/// What the interpreters of all languages have alike: which one is active, how a script begins and
/// ends, what is told of an error. A plug-in's interpreter derives from it, makes its context,
/// debugger and step language, and calls begin() when they are there and end() before they go.
class TAMRIX_EXPORT LanguageInterpreter : public Interpreter {
public:
    LanguageInterpreter(RunnerInterface* runner, Language language);
    ~LanguageInterpreter() override;

    /// The interpreter of the language whose scripts run, null when there is none.
    static LanguageInterpreter* active(Language language) { return s_active[language]; }

    /// What scripts of the language print; to the process's own stream while none runs.
    static void print(Language language, ScriptOutput::Stream stream, const QString& text);

    // Behind begin().
    LanguageContext& context() { return *m_context; }
    LanguageDebugger& languageDebugger() { return *m_languageDebugger; }
    ScriptOutput& output() { return m_output; }
    /// The behaviour-driven side: what scripts have registered, and its run. Only between begin()
    /// and end().
    StepActions& steps() { return *m_steps; }
    /// Whether the calling thread is the one on which the interpreter was made.
    bool isScriptThread() const { return __builtin_thread_pointer() == m_scriptThread; }

    /// Makes the global functions of the current application known when it is another one than
    /// before. Each call of a native function asks, since any of them may have changed it.
    void noticeApplication() {
        if (m_inspector->model() != m_knownModel)
            publishFunctionsOfApplication();
    }

    /// Why a call of a native function has failed, between callDirectly() and its caller.
    void keepCallFailure(ScriptFailure failure) {
        m_callFailure = std::make_unique<ScriptFailure>(std::move(failure));
    }
    std::unique_ptr<ScriptFailure> takeCallFailure() { return std::move(m_callFailure); }

    /// How a call of a script's function came out.
    enum class CallEnd { Succeeded, Pending, Failed };
    /// Calls a function of the script while a native function runs, as a step or a hook. Unless it
    /// succeeds, the error fields tell what happened, with the whole stack; what ends the script
    /// passes as ScriptErrorSet.
    CallEnd callBack(const SharedPtr<ScriptArgument>& function, const CallArguments& arguments);

    // What is pending in the runtime where ScriptErrorSet was thrown.
    /// Whether scripts can catch it: no exit, no skip, no Ctrl-C, nothing else that ends the case.
    virtual bool isErrorOrdinary() = 0;
    /// Takes it, and tells a person of it.
    virtual ScriptError takeError() = 0;
    /// Runs `work`, which throws ScriptErrorSet for what code of the script raises. What was
    /// raised; nothing when it came to its end. What ends the script passes.
    template <typename Work>
    std::optional<ScriptError> attempt(Work work) {
        try {
            work();
            return std::nullopt;
        } catch (const ScriptErrorSet&) {
            if (!isErrorOrdinary())
                throw;
        }
        return takeError();
    }

    /// Runs the text of a file for a script that is running, which then has what it defines. Throws
    /// ScriptErrorSet.
    virtual void runFile(const QString& text, const QString& path) = 0;
    /// Compiles code that is not to run. Throws ScriptErrorSet for what is no valid code. A
    /// language that has no such step overrides checkSyntax() instead.
    virtual void compileOnly(const QString& text, const QString& fileName);
    /// Tells of an error at a place of a script that has run: false, with the error fields.
    bool failAt(const LineInfo& place, const QString& message);
    /// Where a function is defined; invalid when that is in no file.
    virtual LineInfo placeOf(const SharedPtr<ScriptArgument>& function) = 0;

    Language language() const final { return m_language; }
    ScriptContext* scriptContext() override;
    void initTestFunctions(TestResult* result) override;
    void setScriptArguments(const QString& scriptPath, const QStringList& arguments) override;
    bool hasFunction(const QString& name) override;
    bool checkSyntax(const QString& text, const QString& fileName) override;
    bool evaluate(const QString& text, const QString& fileName, int line, int column) override;
    bool callFunction(const QString& name, const ObjectList& arguments) override;
    bool invokeFunction(const QString& name) override;
    bool callLibraryFunction(const QString& name, const QStringList& arguments) override;
    /// LanguageContext::define().
    void addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                           const QStringList& requiredParameters,
                           const QStringList& optionalParameters,
                           const QString& description) override;

protected:
    /// Takes the plug-in's own context and debugger, which stay the plug-in's, and registers all
    /// functions. What the language throws passes, behind end().
    void begin(LanguageContext& context, LanguageDebugger& debugger,
               std::unique_ptr<StepLanguage> steps);
    /// Registers all functions, last those of the application: for a plug-in that begins anew with
    /// each script.
    void registerFunctions();
    /// Whether a script has begun, before the one that begins now.
    bool hasStarted() const { return m_hasStarted; }
    /// Code without a file from before the first script, whose definitions each script finds.
    const QStringList& initScripts() const { return m_initScripts; }
    /// Takes away what holds values of the language. True when there is no other interpreter of the
    /// language: the runtime is to be set back.
    bool end();
    /// No script of this interpreter runs any more; the one of the language that was made last
    /// among the others becomes active. Done by the destructor when a plug-in does not need it
    /// earlier.
    void leaveActive();

    // For the language.
    /// Makes names of the application's global functions known, each as callGlobal(). A name that
    /// is taken stays what it is.
    virtual void publishFunctions(const QStringList& names) = 0;
    /// A script begins: takes away what an earlier one has left, its names above all. `folders` are
    /// where modules are looked for, in this order. What throws ScriptErrorSet is told.
    virtual void startScript(const QString& path, const QStringList& arguments,
                             const QStringList& folders) = 0;
    /// The function that the script defines; null without.
    virtual SharedPtr<ScriptArgument> scriptFunction(const QString& name) = 0;
    /// A function of the library as a script would name it; null without.
    virtual SharedPtr<ScriptArgument> libraryFunction(const QString& name) = 0;
    /// Runs the text of a script at its top level, where `fileName` may be empty. The end is told
    /// by succeed() or failWith(), whose value is returned.
    virtual bool runScript(const QString& text, const QString& fileName) = 0;
    /// Calls a function of the script. The end is told by succeed() or failWith(). When
    /// `isCallback`, what ends the script passes as ScriptErrorSet.
    virtual CallEnd call(const SharedPtr<ScriptArgument>& function, const CallArguments& arguments,
                         const QString& name, bool isCallback) = 0;
    /// Runs code that a person writes while the script stands still, with the variables of a frame,
    /// or with those of the script's top level for null. Gives the text of an expression's value,
    /// an empty one for statements. Throws ScriptErrorSet for what was raised.
    virtual QString evaluateAtStop(const ScriptFrame* frame, const QString& code) = 0;
    /// Code is about to be evaluated: what ends it, as a TimeLimit has it called.
    virtual TimeLimit::Expired endOfEvaluation() = 0;
    /// That was called, and is to have no effect any more: the code has been left.
    virtual void forgetEndOfEvaluation() {}

    /// Runs script code at the top level: `work` throws ScriptErrorSet for what was raised.
    template <typename Work>
    bool runCode(bool hasFile, Work work) {
        try {
            work();
            return succeed();
        } catch (const ScriptErrorSet&) {
            return failWithPending(hasFile);
        }
    }
    /// The same for a call of a function. What ends the script passes when `isCallback`.
    template <typename Work>
    CallEnd runCall(bool isCallback, Work work) {
        try {
            work();
            succeed();
            return CallEnd::Succeeded;
        } catch (const ScriptErrorSet&) {
            if (isCallback && !isErrorOrdinary())
                throw;
        }
        bool isPendingStep = false;
        if (failWithPending(true, &isPendingStep))
            return CallEnd::Succeeded;
        return isPendingStep ? CallEnd::Pending : CallEnd::Failed;
    }
    /// Nothing has caught what is pending, and its code has been left: a debugger may want to tell
    /// of it. By default nobody does.
    virtual void errorUncaught() {}
    /// Script code was ended by what is pending; see failWith().
    bool failWithPending(bool hasFile, bool* isPendingStep = nullptr);

    /// Script code has come to its end.
    bool succeed();
    /// Script code was ended: true for an exit, otherwise the error fields tell what happened.
    /// `hasFile` is false for code that is in no file.
    bool failWith(const ScriptError& error, bool hasFile = true);
    /// The script has called the language's exit, and is not to be run any further.
    bool hasExited() const { return m_exited; }

private:
    CallEnd callFromOutside(const SharedPtr<ScriptArgument>& function,
                            const CallArguments& arguments, const QString& name);
    Outcome<QString> evaluated(const ScriptFrame* frame, const QString& code);
    bool evaluateWhereItStands(const std::vector<ScriptFrame>& frames, const QString& text);
    [[gnu::cold]] void publishFunctionsOfApplication();

    static LanguageInterpreter* s_active[5];
    static std::vector<LanguageInterpreter*> s_instances;

    Language m_language;
    void* m_scriptThread;
    const Inspector* m_inspector = Inspector::self();
    ScriptOutput m_output;
    LanguageContext* m_context = nullptr;
    LanguageDebugger* m_languageDebugger = nullptr;
    std::unique_ptr<StepLanguage> m_stepLanguage;
    std::unique_ptr<StepActions> m_steps;
    /// Only compared: it may be gone.
    ObjectModel* m_knownModel = nullptr;
    std::unique_ptr<ScriptFailure> m_callFailure;
    bool m_exited = false;
    bool m_hasStarted = false;
    QStringList m_initScripts;
};

}  // namespace Tamrix
