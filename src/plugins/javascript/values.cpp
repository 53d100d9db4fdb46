#include "plugins/javascript/values.h"

#include <js/Array.h>
#include <js/BigInt.h>
#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/ContextOptions.h>
#include <js/Date.h>
#include <js/Equality.h>
#include <js/MapAndSet.h>
#include <js/Object.h>
#include <js/PropertyDescriptor.h>
#include <js/Proxy.h>
#include <js/experimental/TypedData.h>
#include <js/friend/StackLimits.h>
#include <jsfriendapi.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "plugins/javascript/objectproxy.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Numbers that are exact as such.
constexpr long long largestInteger = (1LL << 53) - 1;

js::ESClass builtinClass(JSObject* object) {
    JS::RootedObject rooted(engineContext(), object);
    js::ESClass found = js::ESClass::Other;
    checked(JS::GetBuiltinClass(engineContext(), rooted, &found));
    return found;
}

}  // namespace

// Texts

JSString* toJsString(const QString& text) {
    return checked(JS_NewUCStringCopyN(engineContext(),
                                       reinterpret_cast<const char16_t*>(text.utf16()),
                                       static_cast<std::size_t>(text.size())));
}

JS::Value toJsText(const QString& text) {
    return JS::StringValue(toJsString(text));
}

QString fromJsString(JSString* text) {
    JSLinearString* const linear = checked(JS_EnsureLinearString(engineContext(), text));
    const JS::AutoCheckCannotGC untouched;
    const auto length = static_cast<int>(JS::GetLinearStringLength(linear));
    if (JS::LinearStringHasLatin1Chars(linear))
        return QString::fromLatin1(
            reinterpret_cast<const char*>(JS::GetLatin1LinearStringChars(untouched, linear)),
            length);
    return QString(
        reinterpret_cast<const QChar*>(JS::GetTwoByteLinearStringChars(untouched, linear)), length);
}

QString fromKey(jsid key) {
    JSContext* const context = engineContext();
    JS::RootedId id(context, key);
    JS::RootedValue value(context);
    checked(JS_IdToValue(context, id, &value));
    if (value.isSymbol()) {
        JS::Rooted<JS::Symbol*> symbol(context, value.toSymbol());
        JSString* const description = JS::GetSymbolDescription(symbol);
        return "Symbol(" + (description ? fromJsString(description) : QString()) + ')';
    }
    return fromJsString(checked(JS::ToString(context, value)));
}

// Numbers, times, bytes

JS::Value toJsLongInteger(long long value) {
    if (std::abs(value) <= largestInteger)
        return JS::NumberValue(static_cast<double>(value));
    return JS::BigIntValue(checked(JS::NumberToBigInt(engineContext(), value)));
}

JS::Value toJsDate(const QDateTime& time) {
    if (!time.isValid())
        return JS::NullValue();
    const JS::ClippedTime clipped = JS::TimeClip(static_cast<double>(time.toMSecsSinceEpoch()));
    return JS::ObjectValue(*checked(JS::NewDateObject(engineContext(), clipped)));
}

QDateTime fromJsDate(JS::HandleValue value) {
    if (!value.isObject() || builtinClass(&value.toObject()) != js::ESClass::Date)
        return {};
    JS::RootedObject date(engineContext(), &value.toObject());
    double milliseconds = 0;
    checked(js::DateGetMsecSinceEpoch(engineContext(), date, &milliseconds));
    if (std::isnan(milliseconds))
        return {};
    return QDateTime::fromMSecsSinceEpoch(std::llround(milliseconds));
}

JS::Value toJsBytes(const QByteArray& bytes) {
    JSObject* const array =
        checked(JS_NewUint8Array(engineContext(), static_cast<std::size_t>(bytes.size())));
    const JS::AutoCheckCannotGC untouched;
    bool isShared = false;
    std::memcpy(JS_GetUint8ArrayData(array, &isShared, untouched), bytes.constData(),
                static_cast<std::size_t>(bytes.size()));
    return JS::ObjectValue(*array);
}

bool isBytes(JSObject* object) {
    return js::UnwrapUint8Array(object) != nullptr;
}

QByteArray fromJsBytes(JSObject* object) {
    std::size_t length = 0;
    bool isShared = false;
    std::uint8_t* data = nullptr;
    js::GetUint8ArrayLengthAndData(js::UnwrapUint8Array(object), &length, &isShared, &data);
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(length));
}

// Objects

JS::Value propertyOf(JS::HandleObject object, const char* name) {
    JS::RootedValue value(engineContext());
    checked(JS_GetProperty(engineContext(), object, name, &value));
    return value;
}

JS::Value dataPropertyOf(JS::HandleObject object, JS::HandleId key, bool* hasGetter) {
    JSContext* const context = engineContext();
    JS::Rooted<mozilla::Maybe<JS::PropertyDescriptor>> found(context);
    checked(JS_GetOwnPropertyDescriptorById(context, object, key, &found));
    if (hasGetter)
        *hasGetter = found.isSome() && found->isAccessorDescriptor();
    if (found.isNothing() || !found->isDataDescriptor())
        return JS::UndefinedValue();
    return found->value();
}

void defineProperty(JS::HandleObject object, const QString& name, const JS::Value& value,
                    unsigned attributes) {
    JSContext* const context = engineContext();
    JS::RootedValue rooted(context, value);
    checked(JS_DefineUCProperty(context, object, reinterpret_cast<const char16_t*>(name.utf16()),
                                static_cast<std::size_t>(name.size()), rooted, attributes));
}

bool isPlainObject(JSObject* object) {
    JSContext* const context = engineContext();
    if (js::IsProxy(object) || builtinClass(object) != js::ESClass::Object)
        return false;
    JS::RootedObject rooted(context, object);
    JS::RootedObject prototype(context);
    checked(JS_GetPrototype(context, rooted, &prototype));
    if (!prototype)
        return true;
    // The root of all objects, of whatever realm.
    JS::RootedObject root(context);
    checked(JS_GetPrototype(context, prototype, &root));
    return !root && JS::GetClass(object) == JS::GetClass(prototype);
}

bool isMapObject(JSObject* object) {
    return builtinClass(object) == js::ESClass::Map;
}

void elementsOf(JS::HandleObject array, JS::MutableHandleValueVector elements) {
    JSContext* const context = engineContext();
    std::uint32_t length = 0;
    checked(JS::GetArrayLength(context, array, &length));
    JS::RootedValue element(context);
    for (std::uint32_t index = 0; index < length; ++index) {
        checked(JS_GetElement(context, array, index, &element));
        checked(elements.append(element));
    }
}

namespace {

/// What the engine calls for each entry of a collection: adds it to the list that the function has.
bool addEntry(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const auto reserved = [&](std::size_t slot) {
        return js::GetFunctionNativeReserved(&arguments.callee(), slot);
    };
    auto& entries = *static_cast<JS::MutableHandleValueVector*>(reserved(0).toPrivate());
    const auto most = *static_cast<std::size_t*>(reserved(1).toPrivate());
    if (isMapObject(&arguments[2].toObject()) && !entries.append(arguments[1]))
        return false;
    // Without an exception: that is enough.
    return entries.append(arguments[0]) && entries.length() < most;
}

}  // namespace

void entriesOf(JS::HandleObject collection, JS::MutableHandleValueVector entries,
               std::size_t most) {
    JSContext* const context = engineContext();
    JS::RootedObject function(context, JS_GetFunctionObject(checked(js::NewFunctionWithReserved(
                                           context, addEntry, 3, 0, "entries"))));
    js::SetFunctionNativeReserved(function, 0, JS::PrivateValue(&entries));
    js::SetFunctionNativeReserved(function, 1, JS::PrivateValue(&most));
    JS::RootedValue callback(context, JS::ObjectValue(*function));
    // Code of the engine goes through it, which is not meant when none of the script may run.
    JS::ContextOptions& options = JS::ContextOptionsRef(context);
    const bool isGuarded = options.throwOnDebuggeeWouldRun();
    options.setThrowOnDebuggeeWouldRun(false);
    const auto forEach = isMapObject(collection) ? JS::MapForEach : JS::SetForEach;
    const bool isDone = forEach(context, collection, callback, JS::UndefinedHandleValue);
    options.setThrowOnDebuggeeWouldRun(isGuarded);
    checked(isDone || (entries.length() >= most && !JS_IsExceptionPending(context)));
}

// Equality

namespace {

/// Compares values, and remembers which objects it is comparing already.
class Comparison {
public:
    bool areEqual(JS::HandleValue left, JS::HandleValue right) {
        // The same; numbers of either kind by their value; what is not there in either way.
        if (left.isNullOrUndefined() && right.isNullOrUndefined())
            return true;
        const bool areNumbers = left.isNumeric() && right.isNumeric();
        bool equal = false;
        checked(areNumbers ? JS::LooselyEqual(context, left, right, &equal)
                           : JS::StrictlyEqual(context, left, right, &equal));
        if (equal || !left.isObject() || !right.isObject())
            return equal;
        JS::RootedObject first(context, &left.toObject());
        JS::RootedObject second(context, &right.toObject());
        return areEqualObjects(first, second);
    }

private:
    bool areEqualObjects(JS::HandleObject left, JS::HandleObject right) {
        if (isApplicationObject(left) && isApplicationObject(right))
            return areSameApplicationObjects(left, right);
        js::AutoCheckRecursionLimit recursion(context);
        checked(recursion.check(context));
        for (std::size_t index = 0; index < m_compared.length(); index += 2) {
            if (m_compared[index] == left.get() && m_compared[index + 1] == right.get())
                return true;
        }
        const js::ESClass kind = builtinClass(left);
        if (kind != builtinClass(right))
            return false;
        checked(m_compared.append(left) && m_compared.append(right));
        const bool equal = haveEqualMembers(kind, left, right);
        m_compared.shrinkBy(2);
        return equal;
    }

    bool haveEqualMembers(js::ESClass kind, JS::HandleObject left, JS::HandleObject right) {
        switch (kind) {
            case js::ESClass::Array:
            case js::ESClass::Map:
            case js::ESClass::Set: {
                const auto read = [&](JS::HandleObject object, JS::RootedValueVector* values) {
                    if (kind == js::ESClass::Array)
                        elementsOf(object, values);
                    else
                        entriesOf(object, values);
                };
                JS::RootedValueVector first(context);
                JS::RootedValueVector second(context);
                read(left, &first);
                read(right, &second);
                return areEqualLists(first, second);
            }
            case js::ESClass::Date: {
                JS::RootedValue first(context, JS::ObjectValue(*left));
                JS::RootedValue second(context, JS::ObjectValue(*right));
                return fromJsDate(first) == fromJsDate(second);
            }
            case js::ESClass::Object:
                return isPlainObject(left) && isPlainObject(right) && areEqualPlain(left, right);
            default:
                return isBytes(left) && isBytes(right) && fromJsBytes(left) == fromJsBytes(right);
        }
    }

    bool areEqualLists(const JS::RootedValueVector& left, const JS::RootedValueVector& right) {
        if (left.length() != right.length())
            return false;
        for (std::size_t index = 0; index < left.length(); ++index) {
            if (!areEqual(left[index], right[index]))
                return false;
        }
        return true;
    }

    bool areEqualPlain(JS::HandleObject left, JS::HandleObject right) {
        JS::Rooted<JS::IdVector> names(context, JS::IdVector(context));
        JS::Rooted<JS::IdVector> others(context, JS::IdVector(context));
        checked(JS_Enumerate(context, left, &names));
        checked(JS_Enumerate(context, right, &others));
        if (names.length() != others.length())
            return false;
        JS::RootedValue first(context);
        JS::RootedValue second(context);
        JS::RootedId name(context);
        for (const jsid each : names) {
            name = each;
            bool isThere = false;
            checked(JS_HasOwnPropertyById(context, right, name, &isThere));
            if (!isThere)
                return false;
            checked(JS_GetPropertyById(context, left, name, &first));
            checked(JS_GetPropertyById(context, right, name, &second));
            if (!areEqual(first, second))
                return false;
        }
        return true;
    }

    JSContext* context = engineContext();
    JS::RootedObjectVector m_compared{context};
};

}  // namespace

bool areEqual(JS::HandleValue left, JS::HandleValue right) {
    return Comparison().areEqual(left, right);
}

// Code

void setSource(const QString& text, JS::SourceText<char16_t>* source) {
    checked(source->init(engineContext(), reinterpret_cast<const char16_t*>(text.utf16()),
                         static_cast<std::size_t>(text.size()), JS::SourceOwnership::Borrowed));
}

JS::Value evaluateOwn(const QString& text, const char* name) {
    JSContext* const context = engineContext();
    JS::CompileOptions options(context);
    options.setFileAndLine(name, 1);
    JS::SourceText<char16_t> source;
    setSource(text, &source);
    JS::RootedValue value(context);
    checked(JS::Evaluate(context, options, source, &value));
    return value;
}

void clearException() {
    JS_ClearPendingException(engineContext());
}

}  // namespace Tamrix::JavaScriptPlugin
