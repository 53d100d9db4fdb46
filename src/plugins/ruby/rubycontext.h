#pragma once

#include "interpreter/language/languagecontext.h"
#include "plugins/ruby/rubyargument.h"

namespace Tamrix::RubyPlugin {

class RubyInterpreter;

/// The context of all calls of one interpreter.
class RubyContext final : public LanguageContext {
public:
    explicit RubyContext(RubyInterpreter& interpreter);

    /// A call whose arguments need no order. Wrappers of arguments are used again as long as nobody
    /// has kept them.
    class DirectCall : public Call {
    public:
        /// `front`, when not null, goes in front of the arguments.
        DirectCall(RubyContext& context, const VALUE* front, int count, const VALUE* arguments)
            : Call(context, false), m_context(context) {
            if (front)
                context.addArgument(*front);
            for (int index = 0; index < count; ++index)
                context.addArgument(arguments[index]);
        }
        ~DirectCall() { m_context.giveArgumentsBack(); }

    private:
        RubyContext& m_context;
    };

    ScriptContext* createSubContext() override;
    void clearError() override {}

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
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;
    bool evaluate(const QString& text, const QString& fileName) override;
    QString explainArgument(const char* parameter) override;

private:
    void addArgument(VALUE value) {
        if (m_spareArguments.empty()) {
            argumentStorage().push_back(new RubyArgument(value));
            return;
        }
        static_cast<RubyArgument*>(m_spareArguments.back().get())->rebind(value);
        argumentStorage().push_back(std::move(m_spareArguments.back()));
        m_spareArguments.pop_back();
    }
    void giveArgumentsBack() {
        std::vector<SharedPtr<ScriptArgument>>& storage = argumentStorage();
        while (!storage.empty()) {
            if (storage.back()->referenceCount() == 1) {
                static_cast<RubyArgument*>(storage.back().get())->rebind(Qnil);
                m_spareArguments.push_back(std::move(storage.back()));
            }
            storage.pop_back();
        }
    }

    RubyInterpreter& m_interpreter;
    std::vector<SharedPtr<ScriptArgument>> m_spareArguments;
};

}  // namespace Tamrix::RubyPlugin
