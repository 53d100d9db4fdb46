#pragma once

#include "interpreter/language/valuecontext.h"
#include "plugins/javascript/javascriptargument.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptInterpreter;

class JavaScriptContext final
    : public ValueContext<JavaScriptContext, JavaScriptArgument, JavaScriptInterpreter> {
public:
    using ValueContext::ValueContext;

    // For ValueContext.
    static JS::Value makeNothing() { return JS::UndefinedValue(); }
    static JS::Value makeNull() { return JS::NullValue(); }
    static JS::Value makeValue(const JavaScriptArgument& wrapper) { return wrapper.value(); }
    static JS::Value makeValue(bool value) { return JS::BooleanValue(value); }
    static JS::Value makeValue(long long value) { return toJsInteger(value); }
    static JS::Value makeValue(double value) { return JS::NumberValue(value); }
    static JS::Value makeValue(const QString& value) { return toJsText(value); }
    static JS::Value makeValue(const QDateTime& value) { return toJsDate(value); }
    static JS::Value makeValue(const QByteArray& value) { return toJsBytes(value); }
    static JS::Value makeValue(const ScriptArgument::List& values) {
        return newArray(ArgumentValues(values));
    }
    static JS::Value makeValue(const ScriptArgument::Map& values) { return objectOf(values); }
    static JS::Value makeValue(const SharedPtr<Object>& object) {
        return applicationObjectValue(object);
    }
    static JS::Value makeValue(const SharedPtr<TestDataSet>& set) { return dataSetValue(set); }
    JS::Value makeValue(const SharedPtr<NativeScriptObject>& object);
    JS::Value makeValue(const SharedPtr<ApplicationContext>& application);

    void define(const NativeFunction& function) override;

    bool lineInfoOfFrame(LineInfo& position, int ancestorLevel) const override;
    QString explainArgument(const char* parameter) override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;

protected:
    void defineMember(const NativeFunction& function) override;
    void defineConstant(const QString& owner, const QString& name, int value) override;

private:
    /// Defines a name of a namespace, or a global one for an empty owner.
    void defineName(const QString& owner, const QString& name, const JS::Value& value,
                    unsigned attributes);
};

}  // namespace Tamrix::JavaScriptPlugin
