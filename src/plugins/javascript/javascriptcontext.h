#pragma once

#include <jsapi.h>

#include <vector>

#include "interpreter/language/languagecontext.h"
#include "plugins/javascript/javascriptargument.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptInterpreter;

class JavaScriptContext final : public LanguageContext {
public:
    explicit JavaScriptContext(JavaScriptInterpreter& interpreter);

    /// A call whose arguments are as the script gave them. Wrappers are used again as long as
    /// nobody has kept them.
    class PlainCall : public Call {
    public:
        PlainCall(JavaScriptContext& context, const JS::CallArgs& arguments)
            : Call(context, false), m_own(context) {
            for (unsigned index = 0; index < arguments.length(); ++index)
                context.argumentStorage().push_back(context.takeArgument(arguments[index]));
        }
        ~PlainCall() { m_own.giveArgumentsBack(); }
        PlainCall(const PlainCall&) = delete;
        PlainCall& operator=(const PlainCall&) = delete;

    private:
        JavaScriptContext& m_own;
    };

    ScriptContext* createSubContext() override;
    void clearError() override {
        if (JS_IsExceptionPending(engineContext()))
            JS_ClearPendingException(engineContext());
    }

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
    bool isTrue(SharedPtr<ScriptArgument> value) override { return value->toBool(); }
    QString explainArgument(const char* parameter) override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;
    bool evaluate(const QString& text, const QString& fileName) override;

private:
    SharedPtr<ScriptArgument> takeArgument(const JS::Value& value) {
        if (m_spareArguments.empty())
            return argumentOf(value);
        SharedPtr<ScriptArgument> argument = std::move(m_spareArguments.back());
        m_spareArguments.pop_back();
        static_cast<JavaScriptArgument*>(argument.get())->rebind(value);
        return argument;
    }
    void giveArgumentsBack() {
        std::vector<SharedPtr<ScriptArgument>>& storage = argumentStorage();
        while (!storage.empty()) {
            SharedPtr<ScriptArgument> argument = std::move(storage.back());
            storage.pop_back();
            if (argument && argument->referenceCount() == 1) {
                static_cast<JavaScriptArgument*>(argument.get())->rebind(JS::UndefinedValue());
                m_spareArguments.push_back(std::move(argument));
            }
        }
    }

    JavaScriptInterpreter& m_interpreter;
    std::vector<SharedPtr<ScriptArgument>> m_spareArguments;
};

}  // namespace Tamrix::JavaScriptPlugin
