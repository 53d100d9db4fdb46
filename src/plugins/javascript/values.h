#pragma once

#include <js/SourceText.h>
#include <jsapi.h>

#include <QDateTime>
#include <QString>
#include <cstdint>
#include <vector>

#include "interpreter/language/scripterrorset.h"
#include "plugins/javascript/engine.h"

namespace Tamrix::JavaScriptPlugin {

// Values of the engine and ours. All of these run in the realm of the script, on its thread. What
// the engine refuses throws ScriptErrorSet.

/// Throws ScriptErrorSet unless the engine did what it was asked.
inline void checked(bool isDone) {
    if (!isDone)
        throw ScriptErrorSet();
}
template <typename T>
T* checked(T* made) {
    checked(made != nullptr);
    return made;
}

/// A text; lone surrogates are kept both ways.
JSString* toJsString(const QString& text);
QString fromJsString(JSString* text);
/// The text of a property's name or of a symbol.
QString fromKey(jsid key);
JS::Value toJsText(const QString& text);

/// A number, or a BigInt where a number would lose digits.
JS::Value toJsLongInteger(long long value);
inline JS::Value toJsInteger(long long value) {
    const auto narrow = static_cast<std::int32_t>(value);
    return narrow == value ? JS::Int32Value(narrow) : toJsLongInteger(value);
}
/// A Date; null for an invalid time.
JS::Value toJsDate(const QDateTime& time);
/// Invalid for what is no Date, and for one without a time.
QDateTime fromJsDate(JS::HandleValue value);
/// A Uint8Array with a copy of the bytes.
JS::Value toJsBytes(const QByteArray& bytes);
bool isBytes(JSObject* object);
QByteArray fromJsBytes(JSObject* object);

/// Undefined where there is none.
JS::Value propertyOf(JS::HandleObject object, const char* name);
/// The property's value without running a getter of the script; undefined for one with a getter.
JS::Value dataPropertyOf(JS::HandleObject object, JS::HandleId key, bool* hasGetter = nullptr);
void defineProperty(JS::HandleObject object, const QString& name, const JS::Value& value,
                    unsigned attributes = JSPROP_ENUMERATE);

/// An object that is a list of names and values: of no class, or a Map.
bool isPlainObject(JSObject* object);
bool isMapObject(JSObject* object);
/// The elements of an array.
void elementsOf(JS::HandleObject array, JS::MutableHandleValueVector elements);
/// Of a Map keys and values in turn, of a Set its elements, at least the first `most`. Runs no code
/// of the script, also while it stands still.
void entriesOf(JS::HandleObject collection, JS::MutableHandleValueVector entries,
               std::size_t most = SIZE_MAX);

/// Whether two values are equal to a tester: the same, or lists and objects of equal members. One
/// that holds itself is equal to one of the same shape. Throws ScriptErrorSet with a RangeError
/// pending for values that are too deep.
bool areEqual(JS::HandleValue left, JS::HandleValue right);

// Code

/// The text as the compiler takes it, which has to outlive the source.
void setSource(const QString& text, JS::SourceText<char16_t>* source);
/// Runs code of the library's own, which stands in positions under a name in "<>". Its last value.
JS::Value evaluateOwn(const QString& text, const char* name);

/// What is pending is forgotten.
void clearException();

}  // namespace Tamrix::JavaScriptPlugin
