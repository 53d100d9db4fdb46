#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

class LanguageInterpreter;
class NativeFunction;

/// The context of all calls of one interpreter. It is reused: a call that comes while another one
/// is running, from script code that a native function runs, keeps the outer call's state aside.
class TAMRIX_EXPORT LanguageContext : public ScriptContext {
public:
    explicit LanguageContext(LanguageInterpreter& interpreter) : m_interpreter(interpreter) {}

    void setTestResult(TestResult* result) { m_testResult = result; }

    /// The time of one call of a native function: gives the context its arguments and takes them
    /// away at the end.
    class TAMRIX_EXPORT Call {
    public:
        /// An argument that is null was left out. `areNamed` tells that some were given by name.
        Call(LanguageContext& context, ScriptArgument::List arguments, bool areNamed)
            : Call(context, areNamed) {
            context.argumentStorage() = std::move(arguments);
        }
        ~Call() {
            --m_context.m_depth;
            m_context.argumentStorage().clear();
            if (m_outer)
                restoreOuter();
            else
                m_context.m_result.reset();
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        /// What the function has given; null when it gave nothing.
        SharedPtr<ScriptArgument> takeResult() { return std::move(m_context.m_result); }

    protected:
        /// Without arguments: who derives from this puts them into the context's argumentStorage().
        Call(LanguageContext& context, bool areNamed) : m_context(context) {
            if (m_context.m_depth++ > 0)
                keepOuter();
            m_context.m_hasNamedArguments = areNamed;
            setCurrent(&m_context);
        }

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
        void keepOuter();
        void restoreOuter();

        LanguageContext& m_context;
        std::unique_ptr<Outer> m_outer;
    };

    /// The same, with arguments that all stand at their places: add() gives them one after another.
    /// Wrappers, of the plug-in's class, are used again as long as nobody has kept them; its
    /// rebind() makes one stand for another value.
    template <typename Argument>
    class DirectCall : public Call {
    public:
        explicit DirectCall(LanguageContext& context) : Call(context, false), m_own(context) {}
        ~DirectCall() {
            std::vector<SharedPtr<ScriptArgument>>& used = m_own.argumentStorage();
            while (!used.empty()) {
                if (used.back()->referenceCount() == 1) {
                    static_cast<Argument*>(used.back().get())->rebind({});
                    m_own.m_spareArguments.push_back(std::move(used.back()));
                }
                used.pop_back();
            }
        }
        DirectCall(const DirectCall&) = delete;
        DirectCall& operator=(const DirectCall&) = delete;

        template <typename Value>
        void add(Value&& value) {
            std::vector<SharedPtr<ScriptArgument>>& spare = m_own.m_spareArguments;
            if (spare.empty()) {
                m_own.argumentStorage().emplace_back(new Argument(std::forward<Value>(value)));
                return;
            }
            static_cast<Argument*>(spare.back().get())->rebind(std::forward<Value>(value));
            m_own.argumentStorage().push_back(std::move(spare.back()));
            spare.pop_back();
        }

    private:
        LanguageContext& m_own;
    };

    /// By default nothing of the language is pending when a native function begins.
    void clearError() override {}
    bool isTrue(SharedPtr<ScriptArgument> value) override { return value->toBool(); }
    SharedPtr<ScriptArgument> createInteger(int value) override { return createInt64(value); }
    /// A map of `fileName` and `line`.
    SharedPtr<ScriptArgument> createLocation(const ScriptLocation& location) override;

    // What is registered becomes a name of the language, too: see define().
    void addGlobalFunction(const QString& name, Function function) override;
    void addStaticMemberFunction(const QString& className, const QString& name,
                                 Function function) override;
    void addMemberFunction(const QString& className, const QString& name,
                           Function function) override;
    void addConstant(const QString& name, int value) override;
    /// Makes a function known to scripts: a global one, or one of the namespace that owns it.
    virtual void define(const NativeFunction& function);

    void setResult(SharedPtr<ScriptArgument> value) override { m_result = std::move(value); }
    /// The bottom of the stack is the runner, which is no place in a script and is left out.
    void setStackTraceResult(const std::vector<ScriptLocation>& trace) override;
    /// Loads the files with steps.
    Gherkin::ScriptActions* gherkinScriptActions(const QString& featureFile) override;

protected:
    /// Makes a method of the objects that stand for the library's class which owns it: the object
    /// is its first argument. By default there are no such objects, and a warning tells.
    virtual void defineMember(const NativeFunction& function);
    /// `owner` is the namespace, or empty.
    virtual void defineConstant(const QString& owner, const QString& name, int value);

    // For the language's own evaluate...(). What is handed over throws ScriptErrorSet.
    /// For evaluate(): `run` runs what a file holds, whose steps it registers anew.
    bool evaluateFile(const QString& fileName, const std::function<void()>& run);
    /// For evaluateCondition().
    bool attemptCondition(const std::function<bool()>& evaluate, QString* error);
    /// For evaluateForException(): what there is to do with code.
    struct ExceptionCode {
        /// Why a text is no valid code: no exception that a test is about. Empty when it is.
        std::function<QString(const QString& text)> slip;
        /// Runs a text where the script has called.
        std::function<void(const QString& text)> evaluate;
        /// Calls the callable.
        std::function<void()> call;
    };
    std::pair<QString, QString> attemptException(const ScriptArgument& code,
                                                 const ExceptionCode& actions);

private:
    LanguageInterpreter& m_interpreter;
    SharedPtr<ScriptArgument> m_result;
    std::vector<SharedPtr<ScriptArgument>> m_spareArguments;
    int m_depth = 0;
};

}  // namespace Tamrix
