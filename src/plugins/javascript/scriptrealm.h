#pragma once

#include <QString>

#include "interpreter/language/nativeclasses.h"
#include "plugins/javascript/modules.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

/// The world of one script: its global object with all that hangs on it. The next script gets a new
/// one.
class ScriptRealm {
public:
    /// Throws ScriptErrorSet, with nothing pending, when there is no memory for it.
    ScriptRealm();
    ScriptRealm(const ScriptRealm&) = delete;
    ScriptRealm& operator=(const ScriptRealm&) = delete;

    /// That of the active interpreter; null when there is none.
    static ScriptRealm* current();

    JS::HandleObject global() const { return m_global; }
    Modules& modules() { return m_modules; }

    /// What the part of the library that is written in the language gives: `classes`, those of
    /// errors by their names, `context`, the object of steps, and `makeTable`, which makes the
    /// table of a step of its rows.
    JS::Value ofLibrary(const char* name) const { return propertyOf(m_library, name); }
    /// What has the methods of the class StepContext.
    JS::HandleObject stepContext() const { return m_stepContext; }
    /// A class of the namespace `tamrix`; undefined without.
    JS::Value errorClass(const char* name) const {
        return propertyOf(&ofLibrary("classes").toObject(), name);
    }

    // Of an application's objects: what they inherit from, and of what they are made.
    JS::HandleObject applicationObjectPrototype() const { return m_objectPrototype; }
    JS::HandleObject applicationObjectHandler() const { return m_objectHandler; }
    JS::HandleValue proxyClass() const { return m_proxyClass; }
    // What other objects inherit from.
    JS::HandleObject applicationContextPrototype() const { return m_contextPrototype; }
    NativeClasses<ObjectRoot>& nativePrototypes() { return m_nativePrototypes; }

    /// The objects of the script for applications, by their ids.
    JS::HandleObject applicationContexts() const { return m_contexts; }

    /// A number that the function has as long as the realm is there.
    int numberOfFunction(JS::HandleObject function);

private:
    ObjectRoot m_global;
    ObjectRoot m_stepContext;
    ObjectRoot m_library;
    ObjectRoot m_objectPrototype;
    ObjectRoot m_objectHandler;
    ValueRoot m_proxyClass;
    ObjectRoot m_contextPrototype;
    ObjectRoot m_contexts;
    /// A WeakMap.
    ObjectRoot m_functionNumbers;
    int m_lastFunctionNumber = 0;
    NativeClasses<ObjectRoot> m_nativePrototypes;

    Modules m_modules;
};

/// A new global object, in a compartment of its own. Throws ScriptErrorSet.
JSObject* newGlobal();

}  // namespace Tamrix::JavaScriptPlugin
