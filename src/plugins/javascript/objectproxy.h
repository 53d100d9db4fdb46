#pragma once

#include "base/shared.h"
#include "platform/objectmodel/object.h"
#include "plugins/javascript/engineapi.h"

namespace Tamrix::JavaScriptPlugin {

// An object of an application in a script: its properties and methods are those of the object of
// the script. Names that the language asks objects for itself, as `toString`, are the language's.

/// A new object of the script; null of the script for a null pointer. Throws ScriptErrorSet.
JS::Value applicationObjectValue(const SharedPtr<Object>& object);
/// Null when it is none.
SharedPtr<Object> applicationObjectOf(JSObject* object);
inline bool isApplicationObject(JSObject* object) {
    return bool(applicationObjectOf(object));
}

/// What such objects inherit from, in the current realm.
JSObject* makeApplicationObjectPrototype();
/// The handler of all proxies that are such objects, in the current realm.
JSObject* makeApplicationObjectHandler();

}  // namespace Tamrix::JavaScriptPlugin
