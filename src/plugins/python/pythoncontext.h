#pragma once

#include <memory>
#include <vector>

#include "interpreter/bridge/scriptcontext.h"
#include "plugins/python/pyref.h"
#include "plugins/python/pythonargument.h"

namespace Tamrix {
class TestResult;
}

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// The context of all calls of one interpreter. It is reused: a call that comes while another one
/// is running, from script code that a native function runs, keeps the outer call's state aside.
class PythonContext final : public ScriptContext {
public:
    explicit PythonContext(PythonInterpreter& interpreter);

    void setTestResult(TestResult* result) { m_testResult = result; }

    /// The time of one call of a native function: gives the context its arguments and takes them
    /// away at the end.
    class Call {
    public:
        Call(PythonContext& context, PyObject* const* arguments, Py_ssize_t count)
            : m_context(context) {
            enter(false);
            for (Py_ssize_t index = 0; index < count; ++index)
                context.argumentStorage().push_back(
                    context.takeArgument(PyRef::borrow(arguments[index])));
        }
        /// An argument that is null was left out. `areNamed` tells that some were given by name.
        Call(PythonContext& context, ScriptArgument::List arguments, bool areNamed)
            : m_context(context) {
            enter(areNamed);
            context.argumentStorage() = std::move(arguments);
        }
        ~Call() {
            --m_context.m_depth;
            m_context.giveArgumentsBack();
            if (m_outer)
                restoreOuter();
            else if (m_context.m_result)
                m_context.m_result = PyRef();
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        /// What Python gets: the result, None without one, or null with the exception set for the
        /// context's error.
        PyObject* finish() {
            if (m_context.hasError())
                return raise();
            if (m_context.m_result)
                return m_context.m_result.release();
            return Py_NewRef(Py_None);
        }

    private:
        /// State of a call that is running already.
        struct Outer {
            std::vector<SharedPtr<ScriptArgument>> arguments;
            bool areNamed;
            QString errorMessage;
            ErrorType errorType;
            bool isSkip;
            PyRef result;
        };
        void enter(bool areNamed) {
            if (m_context.m_depth++ > 0)
                keepOuter();
            m_context.m_hasNamedArguments = areNamed;
            setCurrent(&m_context);
        }
        void keepOuter();
        void restoreOuter();
        PyObject* raise();

        PythonContext& m_context;
        std::unique_ptr<Outer> m_outer;
    };

    ScriptContext* createSubContext() override;
    void clearError() override;
    void setResult(SharedPtr<ScriptArgument> value) override;
    void setStackTraceResult(const std::vector<ScriptLocation>& trace) override;

    SharedPtr<ScriptArgument> createNull() override;
    SharedPtr<ScriptArgument> createBool(bool value) override;
    SharedPtr<ScriptArgument> createInteger(int value) override;
    SharedPtr<ScriptArgument> createInt64(long long value) override;
    SharedPtr<ScriptArgument> createDouble(double value) override;
    SharedPtr<ScriptArgument> createString(const QString& value) override;
    SharedPtr<ScriptArgument> createDateTime(const QDateTime& value) override;
    SharedPtr<ScriptArgument> createBytes(const QByteArray& value) override;
    SharedPtr<ScriptArgument> createList(
        const std::vector<SharedPtr<ScriptArgument>>& values) override;
    SharedPtr<ScriptArgument> createMap(
        const std::map<QString, SharedPtr<ScriptArgument>>& values) override;
    SharedPtr<ScriptArgument> createNative(SharedPtr<NativeScriptObject> object) override;
    SharedPtr<ScriptArgument> createObject(SharedPtr<Object> object) override;
    SharedPtr<ScriptArgument> createTestDataSet(TestDataSet* dataSet) override;
    SharedPtr<ScriptArgument> createContext(SharedPtr<ApplicationContext> context) override;
    SharedPtr<ScriptArgument> createLocation(const ScriptLocation& location) override;

    void addGlobalFunction(const QString& name, Function function) override;
    void addStaticMemberFunction(const QString& className, const QString& name,
                                 Function function) override;
    void addMemberFunction(const QString& className, const QString& name,
                           Function function) override;
    void addConstant(const QString& name, int value) override;

    bool lineInfoOfFrame(LineInfo& position, int ancestorLevel) const override;
    bool isTrue(SharedPtr<ScriptArgument> value) override;
    QString scriptName(const QString& name) const override;
    QString explainArgument(const char* parameter) override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;
    bool evaluate(const QString& text, const QString& fileName) override;
    Gherkin::ScriptActions* gherkinScriptActions(const QString& featureFile) override;

private:
    /// Wrappers of arguments are used again as long as nobody has kept them.
    SharedPtr<ScriptArgument> takeArgument(PyRef object) {
        if (m_spareArguments.empty())
            return new PythonArgument(std::move(object));
        SharedPtr<ScriptArgument> argument = std::move(m_spareArguments.back());
        m_spareArguments.pop_back();
        static_cast<PythonArgument*>(argument.get())->rebind(std::move(object));
        return argument;
    }
    void giveArgumentsBack() {
        std::vector<SharedPtr<ScriptArgument>>& storage = argumentStorage();
        while (!storage.empty()) {
            SharedPtr<ScriptArgument> argument = std::move(storage.back());
            storage.pop_back();
            if (argument && argument->referenceCount() == 1) {
                static_cast<PythonArgument*>(argument.get())->rebind(PyRef());
                m_spareArguments.push_back(std::move(argument));
            }
        }
    }

    PythonInterpreter& m_interpreter;
    PyRef m_result;
    int m_depth = 0;
    std::vector<SharedPtr<ScriptArgument>> m_spareArguments;
};

}  // namespace Tamrix::PythonPlugin
