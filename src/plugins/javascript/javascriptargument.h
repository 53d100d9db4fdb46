#pragma once

#include <optional>
#include <type_traits>

#include "interpreter/language/languageargument.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

/// One value of the engine as a script value. Conversions that the engine refuses throw
/// ScriptErrorSet.
class JavaScriptArgument final : public LanguageArgument<JavaScriptArgument> {
public:
    explicit JavaScriptArgument(const JS::Value& value) : m_value(engineContext(), value) {
        keepIntegerOf(value);
    }

    /// Makes the wrapper stand for another value, or for none while it is not used.
    void rebind(const JS::Value& value = JS::UndefinedValue()) {
        m_value = value;
        keepIntegerOf(value);
    }

    JS::HandleValue value() const { return m_value; }

    QString typeName() const override { return typeNameOf(value()); }
    bool isBool() const override { return m_value.get().isBoolean(); }
    bool isNumber() const override { return m_value.get().isNumeric(); }
    /// A number without a fraction, or a BigInt.
    bool holdsInteger() const override;
    bool isString() const override { return m_value.get().isString(); }
    bool isCallable() const override { return isFunction(m_value); }
    /// An array.
    bool isList() const override;
    /// A plain object, or a Map.
    bool isMap() const override;
    /// Null and undefined.
    bool isNull() const override { return m_value.get().isNullOrUndefined(); }
    bool toBool() const override;
    double toDouble() const override;
    /// Throws ScriptErrorSet with a RangeError for what 64 bits can't hold.
    long long convertedToInt() const override;
    QString toString() const override { return textOf(value()); }
    List toList() const override;
    Map toMap() const override;
    QString callableIdentifier() const override;

    // For LanguageArgument.
    template <typename T>
    SharedPtr<T> held() const {
        if (!object())
            return {};
        if constexpr (std::is_same_v<T, Object>)
            return applicationObjectOf(object());
        else if constexpr (std::is_same_v<T, TestDataSet>)
            return dataSetOf(ObjectRoot(object()));
        else
            return heldBy<T>(object());
    }
    std::optional<QByteArray> bytes() const;
    /// Of a Date.
    QDateTime time() const { return fromJsDate(m_value); }
    /// Waits for the promise that an asynchronous function gives.
    SharedPtr<ScriptArgument> called(const List& arguments) const;
    static LanguageInterpreter* active();

private:
    /// Nearly all integers are of 32 bits.
    void keepIntegerOf(const JS::Value& value) {
        if (value.isInt32())
            keepInteger(value.toInt32());
        else
            keepNoInteger();
    }
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

/// An object of names and script values.
template <typename Pairs>
JS::Value objectOf(const Pairs& pairs) {
    const ObjectRoot object(newObject());
    for (const auto& [name, value] : pairs)
        defineProperty(object, name, valueOf(value));
    return JS::ObjectValue(*object);
}

/// Those of script values.
class ArgumentValues : public ValueRoots {
public:
    explicit ArgumentValues(const ScriptArgument::List& arguments) {
        for (const SharedPtr<ScriptArgument>& argument : arguments)
            add(valueOf(argument));
    }
};

}  // namespace Tamrix::JavaScriptPlugin
