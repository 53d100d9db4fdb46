#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

#include "plugins/javascript/roots.h"

namespace Tamrix::JavaScriptPlugin {

// Values of the engine and ours. All of these run in the realm of the script, on its thread. What
// the engine refuses throws ScriptErrorSet.

/// A text; lone surrogates are kept both ways.
JS::Value toJsText(const QString& text);
QString fromJsString(JSString* text);
/// Of a value that is a text.
inline QString fromJsText(const JS::Value& value) {
    return fromJsString(value.toString());
}
/// The value as the language itself writes it, which may run code of the script.
QString plainText(JS::HandleValue value);
/// The text of a property's name or of a symbol.
QString fromKey(jsid key);

/// The engine is given the names of files in UTF-8, and tells its scripts and debuggers a character
/// for each byte of them.
inline QString fileFromEngine(const QString& text) {
    return QString::fromUtf8(text.toLatin1());
}

/// A number, or a BigInt where a number would lose digits.
JS::Value toJsLongInteger(long long value);
inline JS::Value toJsInteger(long long value) {
    const auto narrow = static_cast<std::int32_t>(value);
    return narrow == value ? JS::Int32Value(narrow) : toJsLongInteger(value);
}
/// A Date; null for an invalid time.
JS::Value toJsDate(const QDateTime& time);
/// Invalid for what is no Date, and for one without a time.
QDateTime fromJsDate(const JS::Value& value);
/// A Uint8Array with a copy of the bytes.
JS::Value toJsBytes(const QByteArray& bytes);
/// Nothing for what is no Uint8Array.
std::optional<QByteArray> fromJsBytes(JSObject* object);

/// A name as the engine knows properties by.
jsid toKey(const QString& name);
/// Undefined where there is none.
JS::Value propertyOf(JSObject* object, const char* name);
JS::Value propertyOf(JS::HandleObject object, jsid key);
/// Whether the object has one, or inherits one.
bool hasProperty(JS::HandleObject object, jsid key);
/// The property's value without running a getter of the script; undefined for one with a getter.
JS::Value dataPropertyOf(JS::HandleObject object, jsid key, bool* hasGetter = nullptr);
void defineProperty(JS::HandleObject object, const QString& name, const JS::Value& value,
                    unsigned attributes = JSPROP_ENUMERATE);
void defineProperty(JS::HandleObject object, const QString& name, JSObject* value,
                    unsigned attributes = JSPROP_ENUMERATE);
/// With functions, when they are given.
JSObject* newObject(const JSFunctionSpec* functions = nullptr);
JS::Value newArray(const JS::HandleValueArray& elements);
JS::Value newArray(const QStringList& texts);
/// What a class makes.
JSObject* newInstance(JS::HandleValue type, const JS::HandleValueArray& arguments);
/// What new objects of the current realm inherit from.
JSObject* rootPrototype();
/// What the object inherits from; null for nothing.
JSObject* prototypeOf(JSObject* object);

bool isFunction(const JS::Value& value);
/// What a function gives.
JS::Value resultOf(JS::HandleValue function, const JS::HandleValueArray& arguments);

/// Which of the language's own classes made the object.
js::ESClass builtinClass(JSObject* object);
/// An array, a Map or a Set.
inline bool isCollection(js::ESClass kind) {
    return kind == js::ESClass::Array || kind == js::ESClass::Map || kind == js::ESClass::Set;
}
/// An object that is a list of names and values: of no class, or a Map.
bool isPlainObject(JSObject* object);
bool isMapObject(JSObject* object);
/// The elements of an array; of a Map keys and values in turn, of a Set its elements, at least the
/// first `most` of these two. Of a Map or Set it runs no code of the script, also while it stands
/// still.
void elementsOf(JS::HandleObject collection, JS::MutableHandleValueVector elements,
                std::size_t most = SIZE_MAX);

// Code

/// Code as the compiler takes it. The text has to outlive it.
struct Source {
    /// `file` stands for the code in positions.
    Source(const QString& code, const QString& file);

    QByteArray name;
    JS::CompileOptions options;
    JS::SourceText<char16_t> text;
};
/// Runs code of the library's own, whose name is in "<>". Its last value.
JS::Value evaluateOwn(const QString& code, const char* name);

/// What is pending is forgotten.
void clearException();

}  // namespace Tamrix::JavaScriptPlugin
