#pragma once

#include <jsapi.h>

#include "interpreter/bridge/scriptargument.h"
#include "plugins/javascript/engine.h"

namespace Tamrix::JavaScriptPlugin {

/// One value of the engine as a script value. Conversions that the engine refuses throw
/// ScriptErrorSet.
class JavaScriptArgument final : public ScriptArgument {
public:
    explicit JavaScriptArgument(const JS::Value& value) : m_value(engineContext(), value) {}

    /// Makes the wrapper stand for another value, or for none while it is not used.
    void rebind(const JS::Value& value) { m_value = value; }

    JS::HandleValue value() const { return JS::HandleValue::fromMarkedLocation(m_value.address()); }

    QString typeName() const override;
    bool isBool() const override { return m_value.get().isBoolean(); }
    bool isNumber() const override { return m_value.get().isNumeric(); }
    /// A number without a fraction, or a BigInt.
    bool isInteger() const override;
    bool isString() const override { return m_value.get().isString(); }
    bool isObject() const override;
    /// A class of the application is given by its name.
    bool isClass() const override;
    bool isCallable() const override;
    /// An array.
    bool isList() const override;
    /// A plain object, or a Map.
    bool isMap() const override;
    bool isNative(void* typeId) const override;
    bool toBool() const override;
    double toDouble() const override;
    /// Throws ScriptErrorSet with a RangeError for what 64 bits can't hold.
    long long toInt() const override;
    QString toString() const override;
    SharedPtr<Object> toObject() const override;
    const Class* toClass() const override;
    List toList() const override;
    Map toMap() const override;
    SharedPtr<NativeScriptObject> toNative(void* typeId) const override;
    SharedPtr<TestDataSet> toTestDataSet() const override;
    SharedPtr<ApplicationContext> toApplicationContext() const override;
    /// Waits for the promise that an asynchronous function gives.
    SharedPtr<ScriptArgument> call(const List& arguments, QString* error) override;
    QString callableIdentifier() const override;
    const TestDataRecord* toTestDataRecord() const override;
    /// Also null, bytes and dates.
    std::optional<QVariant> toVariant() const override;
    /// Null and undefined.
    bool isNull() const override { return m_value.get().isNullOrUndefined(); }

    using ScriptArgument::toNative;

private:
    /// Null for a value that is no object.
    JSObject* object() const {
        return m_value.get().isObject() ? &m_value.get().toObject() : nullptr;
    }

    JS::PersistentRootedValue m_value;
};

/// The engine's value of a script value.
inline JS::HandleValue valueOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const JavaScriptArgument*>(argument.get())->value();
}

inline SharedPtr<ScriptArgument> argumentOf(const JS::Value& value) {
    return new JavaScriptArgument(value);
}

}  // namespace Tamrix::JavaScriptPlugin
