#pragma once

#include "interpreter/language/languagecontext.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// The context of all calls of one interpreter.
class TclContext final : public LanguageContext {
public:
    explicit TclContext(TclInterpreter& interpreter);

    ScriptContext* createSubContext() override;

    SharedPtr<ScriptArgument> createNull() override;
    SharedPtr<ScriptArgument> createBool(bool value) override;
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

    void define(const NativeFunction& function) override;

    bool isTrue(SharedPtr<ScriptArgument> value) override;
    QString explainArgument(const char* parameter) override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;
    bool evaluate(const QString& text, const QString& fileName) override;

protected:
    void defineMember(const NativeFunction& function) override;
    void defineConstant(const QString& owner, const QString& name, int value) override;

private:
    SharedPtr<ScriptArgument> argument(Tcl_Obj* value);
    SharedPtr<ScriptArgument> argument(TclRef value);

    TclInterpreter& m_interpreter;
};

}  // namespace Tamrix::TclPlugin
