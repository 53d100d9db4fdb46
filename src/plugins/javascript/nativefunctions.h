#pragma once

#include <jsapi.h>

#include "interpreter/language/nativefunction.h"
#include "interpreter/objects/members.h"

namespace Tamrix::JavaScriptPlugin {

// Functions of the script over native ones. All throw ScriptErrorSet.

/// A function, or a method or an accessor, of which `this` is the object; or a class.
JSObject* makeFunction(const NativeFunction& function);

/// A method of the objects that stand for the library's class: the object is the function's first
/// argument.
JSObject* makeMemberFunction(const NativeFunction& function);

/// A class of the script from the description of a native one, with what objects of it inherit from
/// made known to the realm.
JSObject* makeNativeClass(const QString& name, void* typeId, const NativeScriptType& type);

/// A global function of the application.
JSObject* makeApplicationFunction(const QString& name);
/// Whether it is one of the functions of the test system.
bool isLibraryFunction(JSObject* object);

/// A method of an application's object.
JSObject* makeMethod(const SharedPtr<BoundMethod>& method);

}  // namespace Tamrix::JavaScriptPlugin
