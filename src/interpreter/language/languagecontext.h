#pragma once

#include <functional>
#include <optional>
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
    explicit LanguageContext(LanguageInterpreter& interpreter) : m_interpreter(interpreter) {
        m_keepsPlainResults = true;
    }

    void setTestResult(TestResult* result) { m_testResult = result; }

    /// Whether a call is running, or the last one has left an error: then an Interlude comes before
    /// the next one.
    bool isBusy() const { return m_state != 0; }

    /// The time in which a call runs inside of another one, or behind one that has failed: keeps
    /// aside what belongs to it.
    class TAMRIX_EXPORT Interlude {
    public:
        explicit Interlude(LanguageContext& context);
        ~Interlude();
        Interlude(const Interlude&) = delete;
        Interlude& operator=(const Interlude&) = delete;

    private:
        LanguageContext& m_context;
        unsigned char m_state;
        std::vector<SharedPtr<ScriptArgument>> m_arguments;
        bool m_areNamed;
        QString m_errorMessage;
        ErrorType m_errorType;
        bool m_isSkip;
        SharedPtr<ScriptArgument> m_result;
        PlainResult m_plainResult;
    };

    /// A call with arguments that were made for it. One that is null was left out; `areNamed` tells
    /// that some were given by name.
    class TAMRIX_EXPORT Call {
    public:
        Call(LanguageContext& context, ScriptArgument::List given, bool areNamed);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        /// What the function has given; null when it gave nothing.
        SharedPtr<ScriptArgument> takeResult();

    private:
        std::optional<Interlude> m_interlude;
        LanguageContext& m_context;
    };

    /// A call with arguments that all stand at their places, of a context that is not busy.
    /// Wrappers, of the plug-in's class, wait where they are for the next call, unless somebody has
    /// kept them; its rebind() makes one stand for another value, and for none without an argument.
    /// `Own` is the plug-in's context.
    template <typename Own>
    class DirectCall {
    public:
        using Argument = typename Own::Argument;

        explicit DirectCall(LanguageContext& context) : m_context(context) {
            context.m_state = Running;
            setCurrent(&context);
        }
        ~DirectCall() {
            bool areKept = false;
            for (const SharedPtr<ScriptArgument>& each : m_context.argumentStorage()) {
                if (!each || each->referenceCount() > 1) [[unlikely]]
                    areKept = true;
                else
                    static_cast<Argument*>(each.get())->rebind();
            }
            if (areKept) [[unlikely]]
                m_context.dropKeptArguments();
            if (m_context.m_state == Running) [[likely]]
                m_context.m_state = 0;
            else
                m_context.endUnusualCall();
        }
        DirectCall(const DirectCall&) = delete;
        DirectCall& operator=(const DirectCall&) = delete;

        /// `valueOf` gives the value at a place. `owner` is what the wrapper's constructor takes in
        /// front of the value, if anything.
        template <typename ValueOf, typename... Owner>
        void giveArguments(int count, ValueOf valueOf, Owner&... owner) {
            std::vector<SharedPtr<ScriptArgument>>& places = m_context.argumentStorage();
            // Most calls have as many arguments as the one before.
            if (places.data() + count != places.data() + places.size()) [[unlikely]]
                makePlaces(count, valueOf, owner...);
            SharedPtr<ScriptArgument>* const wrappers = places.data();
            for (int place = 0; place < count; ++place)
                static_cast<Argument*>(wrappers[place].get())->rebind(valueOf(place));
        }
        /// Behind the function: whether there is neither an error nor a result.
        bool gaveNothing() const { return m_context.m_state == Running; }
        /// `take` gets the value of the result, with no error there. What wraps it waits for
        /// another one.
        template <typename Take>
        void giveResult(Take take) {
            m_context.m_state = Running;
            const PlainResult plain = m_context.m_plainResult;
            m_context.m_plainResult.kind = PlainResult::None;
            if (plain.kind == PlainResult::Integer) [[likely]]
                return take(Own::makeValue(plain.value));
            switch (plain.kind) {
                case PlainResult::Bool:
                    return take(Own::makeValue(plain.value != 0));
                case PlainResult::Null:
                    return take(Own::makeNull());
                default:
                    break;
            }
            SharedPtr<ScriptArgument> result = std::move(m_context.m_result);
            if (!result)
                return take(Own::makeNothing());
            take(Own::makeValue(static_cast<const Argument&>(*result)));
            if (result->referenceCount() == 1) [[likely]] {
                static_cast<Argument*>(result.get())->rebind();
                result.swap(m_context.m_spareResult);
            }
        }

    private:
        /// Makes so many places for arguments, with the wrappers that wait, as far as there are
        /// some.
        template <typename ValueOf, typename... Owner>
        [[gnu::cold, gnu::noinline]] void makePlaces(int count, ValueOf valueOf, Owner&... owner) {
            std::vector<SharedPtr<ScriptArgument>>& places = m_context.argumentStorage();
            const auto size = static_cast<std::size_t>(count);
            for (; places.size() > size; places.pop_back())
                m_context.m_spareWrappers.push_back(std::move(places.back()));
            places.reserve(size);
            for (auto place = static_cast<int>(places.size()); place < count; ++place) {
                SharedPtr<ScriptArgument> spare = m_context.takeSpareWrapper();
                places.push_back(spare ? std::move(spare) : new Argument(owner..., valueOf(place)));
            }
        }

        LanguageContext& m_context;
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
    void setResult(SharedPtr<ScriptArgument> value) override {
        m_result = std::move(value);
        m_plainResult.kind = PlainResult::None;
        m_state |= HasResult;
    }
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
    /// Leaves the arguments that somebody has kept to them.
    [[gnu::cold]] void dropKeptArguments();
    /// The end of a call that has left a result that nobody took, or an error.
    [[gnu::cold]] void endUnusualCall();

    LanguageInterpreter& m_interpreter;
    SharedPtr<ScriptArgument> m_result;
    /// That of the last result: most calls take it for theirs.
    SharedPtr<ScriptArgument> m_spareResult;
    /// For which the last call had no use.
    std::vector<SharedPtr<ScriptArgument>> m_spareWrappers;
};

}  // namespace Tamrix
