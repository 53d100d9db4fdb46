#pragma once

#include <jsapi.h>

// The handler of the objects that stand for objects of an application. It knows no type of ours:
// the engine is compiled without run-time type information, and so is what derives from its
// classes.

namespace Tamrix::JavaScriptPlugin {

/// A new proxy that keeps the pointer; null with an exception pending on failure.
JSObject* makeObjectProxy(JSContext* context, void* held, JS::HandleObject prototype);
/// Null for what is no such proxy.
void* heldByObjectProxy(JSObject* object);

// What the handler does. False with an exception pending on failure.
/// `isOwn` is false for a name that is the language's, or that the object does not have and that
/// the language asks after.
bool readObjectProxy(JSContext* context, JS::HandleObject proxy, JS::HandleId key,
                     JS::MutableHandleValue value, bool* isOwn);
bool writeObjectProxy(JSContext* context, JS::HandleObject proxy, JS::HandleId key,
                      JS::HandleValue value);
/// Always refuses.
bool deleteOfObjectProxy(JSContext* context, JS::HandleObject proxy, JS::HandleId key);
bool namesOfObjectProxy(JSContext* context, JS::HandleObject proxy,
                        JS::MutableHandleIdVector names);
void endObjectProxy(void* held);

}  // namespace Tamrix::JavaScriptPlugin
