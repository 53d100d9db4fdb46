#include "plugins/javascript/values.h"

#include <cmath>
#include <cstring>

namespace Tamrix::JavaScriptPlugin {

// Texts

JS::Value toJsText(const QString& text) {
    return JS::StringValue(checked(
        JS_NewUCStringCopyN(engineContext(), reinterpret_cast<const char16_t*>(text.utf16()),
                            static_cast<std::size_t>(text.size()))));
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

QString plainText(JS::HandleValue value) {
    return fromJsString(checked(JS::ToString(engineContext(), value)));
}

QString fromKey(jsid key) {
    if (!key.isSymbol())
        return plainText(ValueRoot(given<JS::Value>(JS_IdToValue, key)));
    const Root<JS::Symbol*> symbol(key.toSymbol());
    JSString* const description = JS::GetSymbolDescription(symbol);
    return "Symbol(" + (description ? fromJsString(description) : QString()) + ')';
}

jsid toKey(const QString& name) {
    return given<jsid>(JS_ValueToId, ValueRoot(toJsText(name)));
}

// Numbers, times, bytes

JS::Value toJsLongInteger(long long value) {
    // Numbers that are exact as such.
    constexpr long long largestInteger = (1LL << 53) - 1;
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

QDateTime fromJsDate(const JS::Value& value) {
    const ObjectRoot date(value);
    if (!date || builtinClass(date) != js::ESClass::Date)
        return {};
    const auto milliseconds = given<double>(js::DateGetMsecSinceEpoch, date);
    return std::isnan(milliseconds) ? QDateTime()
                                    : QDateTime::fromMSecsSinceEpoch(std::llround(milliseconds));
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

std::optional<QByteArray> fromJsBytes(JSObject* object) {
    std::size_t length = 0;
    bool isShared = false;
    std::uint8_t* data = nullptr;
    if (!JS_GetObjectAsUint8Array(object, &length, &isShared, &data))
        return std::nullopt;
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(length));
}

// Objects

JS::Value propertyOf(JSObject* object, const char* name) {
    return given<JS::Value>(JS_GetProperty, ObjectRoot(object), name);
}

JS::Value propertyOf(JS::HandleObject object, jsid key) {
    return given<JS::Value>(JS_GetPropertyById, object, IdRoot(key));
}

bool hasProperty(JS::HandleObject object, jsid key) {
    return given<bool>(JS_HasPropertyById, object, IdRoot(key));
}

JS::Value dataPropertyOf(JS::HandleObject object, jsid key, bool* hasGetter) {
    JS::Rooted<mozilla::Maybe<JS::PropertyDescriptor>> found(engineContext());
    checked(JS_GetOwnPropertyDescriptorById(engineContext(), object, IdRoot(key), &found));
    if (hasGetter)
        *hasGetter = found.isSome() && found->isAccessorDescriptor();
    return found.isSome() && found->isDataDescriptor() ? found->value() : JS::UndefinedValue();
}

void defineProperty(JS::HandleObject object, const QString& name, const JS::Value& value,
                    unsigned attributes) {
    const ValueRoot kept(value);
    checked(JS_DefinePropertyById(engineContext(), object, IdRoot(toKey(name)), kept, attributes));
}

void defineProperty(JS::HandleObject object, const QString& name, JSObject* value,
                    unsigned attributes) {
    defineProperty(object, name, JS::ObjectValue(*value), attributes);
}

JSObject* newObject(const JSFunctionSpec* functions) {
    const ObjectRoot object(checked(JS_NewPlainObject(engineContext())));
    checked(!functions || JS_DefineFunctions(engineContext(), object, functions));
    return object;
}

JS::Value newArray(const JS::HandleValueArray& elements) {
    return JS::ObjectValue(*checked(JS::NewArrayObject(engineContext(), elements)));
}

JS::Value newArray(const QStringList& texts) {
    ValueRoots elements;
    for (const QString& text : texts)
        elements.add(toJsText(text));
    return newArray(elements);
}

JSObject* newInstance(JS::HandleValue type, const JS::HandleValueArray& arguments) {
    ObjectRoot made;
    checked(JS::Construct(engineContext(), type, arguments, &made));
    return made;
}

JSObject* rootPrototype() {
    return checked(JS::GetRealmObjectPrototype(engineContext()));
}

JSObject* prototypeOf(JSObject* object) {
    return given<JSObject*>(JS_GetPrototype, ObjectRoot(object));
}

bool isFunction(const JS::Value& value) {
    return value.isObject() && JS::IsCallable(&value.toObject());
}

JS::Value resultOf(JS::HandleValue function, const JS::HandleValueArray& arguments) {
    ValueRoot result;
    checked(JS::Call(engineContext(), JS::UndefinedHandleValue, function, arguments, &result));
    return result;
}

js::ESClass builtinClass(JSObject* object) {
    return given<js::ESClass>(JS::GetBuiltinClass, ObjectRoot(object));
}

bool isPlainObject(JSObject* object) {
    const ObjectRoot own(object);
    if (js::IsProxy(own) || builtinClass(own) != js::ESClass::Object)
        return false;
    const ObjectRoot prototype(prototypeOf(own));
    // That of all objects is the root, of whatever realm.
    return !prototype || (!prototypeOf(prototype) && JS::GetClass(own) == JS::GetClass(prototype));
}

bool isMapObject(JSObject* object) {
    return builtinClass(object) == js::ESClass::Map;
}

void elementsOf(JS::HandleObject collection, JS::MutableHandleValueVector elements,
                std::size_t most) {
    JSContext* const context = engineContext();
    const js::ESClass kind = builtinClass(collection);
    if (kind != js::ESClass::Map && kind != js::ESClass::Set) {
        const auto length = given<std::uint32_t>(JS::GetArrayLength, collection);
        for (std::uint32_t index = 0; index < length; ++index)
            checked(elements.append(given<JS::Value>(JS_GetElement, collection, index)));
        return;
    }
    struct Collected {
        JS::MutableHandleValueVector elements;
        bool areKeysWanted;
        std::size_t most;
    } collected{elements, kind == js::ESClass::Map, most};
    // What the engine calls for each entry.
    const JSNative collect = [](JSContext*, unsigned count, JS::Value* values) {
        const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
        const JS::Value self = js::GetFunctionNativeReserved(&arguments.callee(), 0);
        auto& [found, areKeysWanted, enough] = *static_cast<Collected*>(self.toPrivate());
        // Without an exception: that is enough.
        return (!areKeysWanted || found.append(arguments[1])) && found.append(arguments[0]) &&
               found.length() < enough;
    };
    const ObjectRoot function(JS_GetFunctionObject(
        checked(js::NewFunctionWithReserved(context, collect, 3, 0, "entries"))));
    js::SetFunctionNativeReserved(function, 0, JS::PrivateValue(&collected));
    const ValueRoot callback(JS::ObjectValue(*function));
    // Code of the engine goes through it, which is not meant when none of the script may run.
    JS::ContextOptions& options = JS::ContextOptionsRef(context);
    const bool isGuarded = options.throwOnDebuggeeWouldRun();
    options.setThrowOnDebuggeeWouldRun(false);
    const auto forEach = collected.areKeysWanted ? JS::MapForEach : JS::SetForEach;
    const bool isDone = forEach(context, collection, callback, JS::UndefinedHandleValue);
    options.setThrowOnDebuggeeWouldRun(isGuarded);
    checked(isDone || (elements.length() >= most && !JS_IsExceptionPending(context)));
}

// Code

Source::Source(const QString& code, const QString& file)
    : name(file.toUtf8()), options(engineContext()) {
    options.setFileAndLine(name.constData(), 1);
    checked(text.init(engineContext(), reinterpret_cast<const char16_t*>(code.utf16()),
                      static_cast<std::size_t>(code.size()), JS::SourceOwnership::Borrowed));
}

JS::Value evaluateOwn(const QString& code, const char* name) {
    Source source(code, QString::fromLatin1(name));
    ValueRoot value;
    checked(JS::Evaluate(engineContext(), source.options, source.text, &value));
    return value;
}

void clearException() {
    JS_ClearPendingException(engineContext());
}

}  // namespace Tamrix::JavaScriptPlugin
