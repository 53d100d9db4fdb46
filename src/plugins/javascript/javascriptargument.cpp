#include "plugins/javascript/javascriptargument.h"

#include <js/Array.h>
#include <js/BigInt.h>
#include <js/Conversions.h>
#include <js/Object.h>
#include <jsfriendapi.h>

#include <cmath>

#include "interpreter/objects/objectidentity.h"
#include "platform/objectmodel/inspector.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// 2 to the power of 63.
constexpr double endOfIntegers = 9223372036854775808.0;

[[noreturn]] void refuseInteger(const QString& text) {
    raiseBuiltIn(
        "RangeError",
        QStringLiteral("%1 is no integer of 64 bits: only such can be passed on").arg(text));
    throw ScriptErrorSet();
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

bool JavaScriptArgument::isObject() const {
    return object() && isApplicationObject(object());
}

bool JavaScriptArgument::isClass() const {
    return toClass() != nullptr;
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

bool JavaScriptArgument::isNative(void* typeId) const {
    return bool(toNative(typeId));
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

long long JavaScriptArgument::toInt() const {
    const JS::Value& own = m_value.get();
    if (own.isInt32())
        return own.toInt32();
    if (own.isBigInt()) {
        std::int64_t number = 0;
        if (!JS::BigIntFits(own.toBigInt(), &number))
            refuseInteger(textOf(value()));
        return number;
    }
    const double number = std::trunc(toDouble());
    if (!(number >= -endOfIntegers && number < endOfIntegers))
        refuseInteger(textOf(value()));
    return static_cast<long long>(number);
}

QString JavaScriptArgument::toString() const {
    return textOf(value());
}

SharedPtr<Object> JavaScriptArgument::toObject() const {
    return object() ? applicationObjectOf(object()) : SharedPtr<Object>();
}

const Class* JavaScriptArgument::toClass() const {
    return isString() ? Inspector::self()->classByName(toString()) : nullptr;
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

SharedPtr<NativeScriptObject> JavaScriptArgument::toNative(void* typeId) const {
    const auto* const native = object() ? heldBy<SharedPtr<NativeScriptObject>>(object()) : nullptr;
    const auto* const interpreter = JavaScriptInterpreter::active();
    if (native && interpreter && interpreter->isDerivedFrom((*native)->typeId(), typeId))
        return *native;
    return {};
}

SharedPtr<TestDataSet> JavaScriptArgument::toTestDataSet() const {
    JS::RootedObject array(engineContext(), object());
    return array ? dataSetOf(array) : SharedPtr<TestDataSet>();
}

SharedPtr<ApplicationContext> JavaScriptArgument::toApplicationContext() const {
    const auto* const application =
        object() ? heldBy<SharedPtr<ApplicationContext>>(object()) : nullptr;
    return application ? *application : SharedPtr<ApplicationContext>();
}

const TestDataRecord* JavaScriptArgument::toTestDataRecord() const {
    const auto* const row = object() ? heldBy<HeldRecord>(object()) : nullptr;
    return row ? row->record : nullptr;
}

std::optional<QVariant> JavaScriptArgument::toVariant() const {
    if (isNull())
        return QVariant();
    if (object() && isBytes(object()))
        return fromJsBytes(object());
    const QDateTime time = fromJsDate(value());
    if (time.isValid())
        return time;
    return ScriptArgument::toVariant();
}

// Callables

SharedPtr<ScriptArgument> JavaScriptArgument::call(const List& arguments, QString* error) {
    JSContext* const context = engineContext();
    JS::RootedValueVector values(context);
    for (const SharedPtr<ScriptArgument>& argument : arguments)
        checked(values.append(valueOf(argument)));
    JS::RootedValue result(context);
    try {
        checked(JS::Call(context, JS::UndefinedHandleValue, value(), values, &result));
        settled(&result);
        return argumentOf(result);
    } catch (const ScriptErrorSet&) {
        // An exception that ends the script is not the caller's to report.
        if (isEndOfScript())
            throw;
    }
    const ScriptError raised = takeScriptError();
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->setCallErrorStack(raised.callStack);
    *error = raised.message;
    return {};
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
