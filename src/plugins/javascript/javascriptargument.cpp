#include "plugins/javascript/javascriptargument.h"

#include <js/Array.h>
#include <js/BigInt.h>
#include <js/Conversions.h>
#include <js/Object.h>
#include <jsfriendapi.h>

#include <cmath>

#include "interpreter/objects/objectidentity.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

[[noreturn]] void refuseInteger(const QString& text) {
    throwBuiltIn(
        "RangeError",
        QStringLiteral("%1 is no integer of 64 bits: only such can be passed on").arg(text));
}

}  // namespace

// Type tests

QString JavaScriptArgument::typeName() const {
    return typeNameOf(value());
}

bool JavaScriptArgument::isInteger() const {
    const JS::Value& own = m_value.get();
    return own.isInt32() || own.isBigInt() ||
           (own.isDouble() && std::trunc(own.toDouble()) == own.toDouble() &&
            std::isfinite(own.toDouble()));
}

bool JavaScriptArgument::isCallable() const {
    return object() && JS::IsCallable(object());
}

bool JavaScriptArgument::isList() const {
    bool isArray = false;
    if (object())
        checked(JS::IsArrayObject(engineContext(), value(), &isArray));
    return isArray;
}

bool JavaScriptArgument::isMap() const {
    return object() && !heldIn(object()) && !isApplicationObject(object()) &&
           (isPlainObject(object()) || isMapObject(object()));
}

// Conversions

bool JavaScriptArgument::toBool() const {
    if (const SharedPtr<Object> own = toObject())
        return isTrueObject(own);
    return JS::ToBoolean(value());
}

double JavaScriptArgument::toDouble() const {
    const JS::Value& own = m_value.get();
    if (own.isNumber())
        return own.toNumber();
    if (own.isBigInt())
        return JS::BigIntToNumber(own.toBigInt());
    return own.isBoolean() && own.toBoolean() ? 1 : 0;
}

long long JavaScriptArgument::converted() const {
    const JS::Value& own = m_value.get();
    if (own.isBigInt()) {
        std::int64_t number = 0;
        if (!JS::BigIntFits(own.toBigInt(), &number))
            refuseInteger(textOf(value()));
        return number;
    }
    const std::optional<long long> whole = wholePart(toDouble());
    if (!whole)
        refuseInteger(textOf(value()));
    return *whole;
}

QString JavaScriptArgument::toString() const {
    return textOf(value());
}

ScriptArgument::List JavaScriptArgument::toList() const {
    List values;
    if (!isList())
        return values;
    JS::RootedObject array(engineContext(), object());
    JS::RootedValueVector elements(engineContext());
    elementsOf(array, &elements);
    values.reserve(elements.length());
    for (const JS::Value& element : elements)
        values.push_back(argumentOf(element));
    return values;
}

ScriptArgument::Map JavaScriptArgument::toMap() const {
    Map values;
    if (!isMap())
        return values;
    JSContext* const context = engineContext();
    JS::RootedObject own(context, object());
    JS::RootedValue value(context);
    if (isMapObject(own)) {
        JS::RootedValueVector entries(context);
        entriesOf(own, &entries);
        for (std::size_t index = 0; index + 1 < entries.length(); index += 2)
            values[textOf(entries[index])] = argumentOf(entries[index + 1]);
        return values;
    }
    JS::Rooted<JS::IdVector> names(context, JS::IdVector(context));
    checked(JS_Enumerate(context, own, &names));
    JS::RootedId name(context);
    for (const jsid each : names) {
        name = each;
        checked(JS_GetPropertyById(context, own, name, &value));
        values[fromKey(name)] = argumentOf(value);
    }
    return values;
}

std::optional<QByteArray> JavaScriptArgument::bytes() const {
    return object() && isBytes(object()) ? std::optional(fromJsBytes(object())) : std::nullopt;
}

QDateTime JavaScriptArgument::time() const {
    return fromJsDate(value());
}

// Callables

SharedPtr<ScriptArgument> JavaScriptArgument::called(const List& arguments) const {
    JSContext* const context = engineContext();
    JS::RootedValueVector values(context);
    for (const SharedPtr<ScriptArgument>& argument : arguments)
        checked(values.append(valueOf(argument)));
    JS::RootedValue result(context);
    checked(JS::Call(context, JS::UndefinedHandleValue, value(), values, &result));
    settled(&result);
    return argumentOf(result);
}

LanguageInterpreter* JavaScriptArgument::active() {
    return JavaScriptInterpreter::active();
}

QString JavaScriptArgument::callableIdentifier() const {
    ScriptRealm* const realm = ScriptRealm::current();
    JS::RootedObject function(engineContext(), object());
    if (!realm || !function)
        return ScriptArgument::callableIdentifier();
    // Objects move, so that their address tells nothing.
    return QStringLiteral("Callable|%1").arg(realm->numberOfFunction(function));
}

}  // namespace Tamrix::JavaScriptPlugin
