#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

class LanguageInterpreter;

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

    void setResult(SharedPtr<ScriptArgument> value) override { m_result = std::move(value); }
    /// The bottom of the stack is the runner, which is no place in a script and is left out.
    void setStackTraceResult(const std::vector<ScriptLocation>& trace) override;
    /// Loads the files with steps.
    Gherkin::ScriptActions* gherkinScriptActions(const QString& featureFile) override;

private:
    LanguageInterpreter& m_interpreter;
    SharedPtr<ScriptArgument> m_result;
    int m_depth = 0;
};

}  // namespace Tamrix
