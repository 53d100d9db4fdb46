#include "plugins/javascript/javascriptargument.h"

#include <cmath>

#include "interpreter/objects/objectidentity.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/promises.h"

namespace Tamrix::JavaScriptPlugin {

// Type tests

bool JavaScriptArgument::holdsInteger() const {
    const JS::Value& own = m_value.get();
    return own.isBigInt() || (own.isDouble() && std::trunc(own.toDouble()) == own.toDouble() &&
                              std::isfinite(own.toDouble()));
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

long long JavaScriptArgument::convertedToInt() const {
    const JS::Value& own = m_value.get();
    std::int64_t number = 0;
    if (own.isBigInt() && JS::BigIntFits(own.toBigInt(), &number))
        return number;
    const std::optional<long long> whole = own.isBigInt() ? std::nullopt : wholePart(toDouble());
    if (!whole)
        throwBuiltIn(JSProto_RangeError,
                     QStringLiteral("%1 is no integer of 64 bits: only such can be passed on")
                         .arg(toString()));
    return *whole;
}

ScriptArgument::List JavaScriptArgument::toList() const {
    List values;
    if (!isList())
        return values;
    ValueRoots elements;
    elementsOf(ObjectRoot(object()), &elements);
    values.reserve(elements.length());
    for (const JS::Value& element : elements)
        values.push_back(argumentOf(element));
    return values;
}

ScriptArgument::Map JavaScriptArgument::toMap() const {
    Map values;
    if (!isMap())
        return values;
    const ObjectRoot own(object());
    if (isMapObject(own)) {
        ValueRoots entries;
        elementsOf(own, &entries);
        for (std::size_t index = 0; index + 1 < entries.length(); index += 2)
            values[textOf(entries[index])] = argumentOf(entries[index + 1]);
        return values;
    }
    JS::PersistentRootedIdVector names(engineContext());
    checked(js::GetPropertyKeys(engineContext(), own, JSITER_OWNONLY, &names));
    for (const jsid& name : names)
        values[fromKey(name)] = argumentOf(propertyOf(own, name));
    return values;
}

std::optional<QByteArray> JavaScriptArgument::bytes() const {
    return object() ? fromJsBytes(object()) : std::nullopt;
}

// Callables

SharedPtr<ScriptArgument> JavaScriptArgument::called(const List& arguments) const {
    ValueRoot result(resultOf(value(), ArgumentValues(arguments)));
    settled(&result);
    return argumentOf(result);
}

LanguageInterpreter* JavaScriptArgument::active() {
    return JavaScriptInterpreter::active();
}

QString JavaScriptArgument::callableIdentifier() const {
    ScriptRealm* const realm = ScriptRealm::current();
    if (!realm || !object())
        return ScriptArgument::callableIdentifier();
    // Objects move, so that their address tells nothing.
    return QStringLiteral("Callable|%1").arg(realm->numberOfFunction(ObjectRoot(object())));
}

}  // namespace Tamrix::JavaScriptPlugin
