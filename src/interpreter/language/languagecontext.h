#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/language/heldrecord.h"

namespace Tamrix {

class LanguageInterpreter;
class NativeFunction;
class StepActions;

/// The context of all calls of one interpreter. It is reused: a call that comes while another one
/// is running, from script code that a native function runs, keeps the outer call's state aside.
class TAMRIX_EXPORT LanguageContext : public ScriptContext {
public:
    explicit LanguageContext(LanguageInterpreter& interpreter) : m_interpreter(interpreter) {}

    void setTestResult(TestResult* result) { m_testResult = result; }

    /// The time of one call of a native function: keeps aside what belongs to an outer one, and
    /// takes the result away at the end.
    class TAMRIX_EXPORT CallScope {
    public:
        CallScope(const CallScope&) = delete;
        CallScope& operator=(const CallScope&) = delete;

        /// What the function has given; null when it gave nothing.
        SharedPtr<ScriptArgument> takeResult() { return std::move(m_context.m_result); }

    protected:
        /// `areNamed` tells that some arguments were given by name.
        CallScope(LanguageContext& context, bool areNamed) : m_context(context) {
            if (m_context.m_depth++ > 0) [[unlikely]]
                keepOuter();
            m_context.m_hasNamedArguments = areNamed;
            setCurrent(&m_context);
        }
        ~CallScope() {
            --m_context.m_depth;
            if (m_outer) [[unlikely]]
                restoreOuter();
            else if (m_context.m_result) [[unlikely]]
                m_context.m_result.reset();
        }
        std::vector<SharedPtr<ScriptArgument>>& arguments() { return m_context.argumentStorage(); }
        /// Makes so many places for arguments, with the wrappers that wait, as far as there are
        /// some.
        [[gnu::cold]] void makePlaces(std::size_t count);
        /// Leaves the arguments that somebody has kept to them.
        [[gnu::cold]] void dropKept();

        LanguageContext& m_context;

    private:
        /// State of a call that is running already.
        struct Outer {
            std::vector<SharedPtr<ScriptArgument>> arguments;
            bool areNamed;
            QString errorMessage;
            ErrorType errorType;
            bool isSkip;
            SharedPtr<ScriptArgument> result;
        };
        [[gnu::cold]] void keepOuter();
        [[gnu::cold]] void restoreOuter();

        std::unique_ptr<Outer> m_outer;
    };

    /// A call with arguments that were made for it. One that is null was left out.
    class Call : public CallScope {
    public:
        Call(LanguageContext& context, ScriptArgument::List given, bool areNamed)
            : CallScope(context, areNamed) {
            arguments() = std::move(given);
        }
        ~Call() { arguments().clear(); }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    protected:
        /// Without arguments: who derives from this puts them into the context's argumentStorage().
        Call(LanguageContext& context, bool areNamed) : CallScope(context, areNamed) {
            arguments().clear();
        }
    };

    /// A call with arguments that all stand at their places. Wrappers, of the plug-in's class, wait
    /// where they are for the next call, unless somebody has kept them; its rebind() makes one
    /// stand for another value, and for none without an argument.
    template <typename Argument>
    class DirectCall : public CallScope {
    public:
        explicit DirectCall(LanguageContext& context) : CallScope(context, false) {}
        ~DirectCall() {
            bool areKept = false;
            for (const SharedPtr<ScriptArgument>& each : arguments()) {
                if (!each || each->referenceCount() > 1) [[unlikely]]
                    areKept = true;
                else
                    static_cast<Argument*>(each.get())->rebind();
            }
            if (areKept) [[unlikely]]
                dropKept();
        }
        DirectCall(const DirectCall&) = delete;
        DirectCall& operator=(const DirectCall&) = delete;

        /// `valueOf` gives the value at a place. `owner` is what the wrapper's constructor takes in
        /// front of the value, if anything.
        template <typename ValueOf, typename... Owner>
        void giveArguments(int count, ValueOf valueOf, Owner&... owner) {
            // Most calls have as many arguments as the one before.
            if (m_context.argumentCount() != count) [[unlikely]]
                makePlaces(static_cast<std::size_t>(count));
            SharedPtr<ScriptArgument>* const wrappers = arguments().data();
            for (int place = 0; place < count; ++place) {
                if (wrappers[place]) [[likely]]
                    static_cast<Argument*>(wrappers[place].get())->rebind(valueOf(place));
                else
                    wrappers[place] = new Argument(owner..., valueOf(place));
            }
        }
        /// `take` gets the result, as it is of takeResult(), and its wrapper waits for another one.
        template <typename Take>
        void giveResult(Take take) {
            SharedPtr<ScriptArgument>& result = m_context.m_result;
            take(static_cast<Argument*>(result.get()));
            if (result && result->referenceCount() == 1) [[likely]] {
                static_cast<Argument*>(result.get())->rebind();
                result.swap(m_context.m_spareResult);
            }
        }
    };

    /// By default nothing of the language is pending when a native function begins.
    void clearError() override {}
    bool isTrue(SharedPtr<ScriptArgument> value) override { return value->toBool(); }
    SharedPtr<ScriptArgument> createInteger(int value) override { return createInt64(value); }
    /// A map of `fileName` and `line`.
    SharedPtr<ScriptArgument> createLocation(const ScriptLocation& location) override;
    /// A row of a data set, for a language that takes its classes of values from valueMembers().
    virtual SharedPtr<ScriptArgument> createRecord(const SharedPtr<HeldRecord>&) {
        return createNull();
    }

    // What is registered becomes a name of the language, too: see define().
    void addGlobalFunction(const QString& name, Function function) override;
    void addStaticMemberFunction(const QString& className, const QString& name,
                                 Function function) override;
    void addMemberFunction(const QString& className, const QString& name,
                           Function function) override;
    void addConstant(const QString& name, int value) override;
    /// Makes a function known to scripts: a global one, or one of the namespace that owns it.
    virtual void define(const NativeFunction& function);
    /// Makes the valueMembers() methods of the language's classes of values.
    void defineValueMembers();
    /// Makes the stepMembers() methods of its class StepContext.
    void defineStepMembers();
    /// What the scripts have registered.
    StepActions& steps();

    /// By the frames that the debugger knows.
    bool lineInfoOfFrame(LineInfo& position, int ancestorLevel) const override;
    void setResult(SharedPtr<ScriptArgument> value) override { m_result = std::move(value); }
    /// The bottom of the stack is the runner, which is no place in a script and is left out.
    void setStackTraceResult(const std::vector<ScriptLocation>& trace) override;
    bool evaluate(const QString& text, const QString& fileName) override;
    /// Loads the files with steps.
    Gherkin::ScriptActions* gherkinScriptActions(const QString& featureFile) override;

protected:
    /// A wrapper that a call has no use for; null when there is none.
    SharedPtr<ScriptArgument> takeSpareWrapper() {
        if (m_spareResult)
            return std::move(m_spareResult);
        if (m_spareWrappers.empty())
            return {};
        SharedPtr<ScriptArgument> wrapper = std::move(m_spareWrappers.back());
        m_spareWrappers.pop_back();
        return wrapper;
    }

    /// Makes a method of the objects that stand for the library's class which owns it: the object
    /// is its first argument. By default there are no such objects, and a warning tells.
    virtual void defineMember(const NativeFunction& function);
    /// `owner` is the namespace, or empty.
    virtual void defineConstant(const QString& owner, const QString& name, int value);

    // For the language's own evaluate...(). What is handed over throws ScriptErrorSet.
    /// For evaluateCondition().
    bool attemptCondition(const std::function<bool()>& evaluate, QString* error);
    /// For evaluateForException(): what there is to do with code.
    struct ExceptionCode {
        /// Why a text is no valid code: no exception that a test is about. Empty when it is. Null
        /// lets the interpreter compile it.
        std::function<QString(const QString& text)> slip;
        /// Runs a text where the script has called.
        std::function<void(const QString& text)> evaluate;
        /// Calls the callable.
        std::function<void()> call;
    };
    std::pair<QString, QString> attemptException(const ScriptArgument& code,
                                                 const ExceptionCode& actions);

private:
    QString slipIn(const QString& code);

    LanguageInterpreter& m_interpreter;
    SharedPtr<ScriptArgument> m_result;
    /// That of the last result: most calls take it for theirs.
    SharedPtr<ScriptArgument> m_spareResult;
    /// For which the last call had no use.
    std::vector<SharedPtr<ScriptArgument>> m_spareWrappers;
    int m_depth = 0;
};

}  // namespace Tamrix
