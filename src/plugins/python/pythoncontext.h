#pragma once

#include <vector>

#include "interpreter/language/languagecontext.h"
#include "plugins/python/pyref.h"
#include "plugins/python/pythonargument.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// The context of all calls of one interpreter.
class PythonContext final : public LanguageContext {
public:
    explicit PythonContext(PythonInterpreter& interpreter);

    /// The time of one call of a native function by Python.
    class Call : public LanguageContext::Call {
    public:
        using LanguageContext::Call::Call;
        Call(PythonContext& context, PyObject* const* arguments, Py_ssize_t count)
            : LanguageContext::Call(context, false), m_context(&context) {
            for (Py_ssize_t index = 0; index < count; ++index)
                context.argumentStorage().push_back(
                    context.takeArgument(PyRef::borrow(arguments[index])));
        }
        ~Call() {
            if (m_context)
                m_context->giveArgumentsBack();
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        /// Null when the arguments were made for this call alone.
        PythonContext* m_context = nullptr;
    };

    ScriptContext* createSubContext() override;
    void clearError() override;

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
    std::vector<SharedPtr<ScriptArgument>> m_spareArguments;
};

}  // namespace Tamrix::PythonPlugin
