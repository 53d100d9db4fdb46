#pragma once

#include <jsapi.h>

#include <QString>
#include <memory>
#include <unordered_map>

#include "interpreter/language/nativeclasses.h"
#include "plugins/javascript/modules.h"

namespace Tamrix::JavaScriptPlugin {

/// The world of one script: its global object with all that hangs on it. The next script gets a new
/// one.
class ScriptRealm {
public:
    /// Throws ScriptErrorSet, with nothing pending, when there is no memory for it.
    ScriptRealm();
    ~ScriptRealm();
    ScriptRealm(const ScriptRealm&) = delete;
    ScriptRealm& operator=(const ScriptRealm&) = delete;

    /// That of the active interpreter; null when there is none.
    static ScriptRealm* current();

    JSObject* global() const { return m_global; }
    Modules& modules() { return m_modules; }

    /// A class of the namespace `tamrix`; undefined without.
    JS::Value errorClass(const char* name) const;

    /// What steps and hooks are called with.
    JSObject* stepContext() const { return m_stepContext; }
    /// The function that makes the table of a step of its rows.
    JSObject* tableMaker() const { return m_tableMaker; }

    /// The object of a namespace, made on first use.
    JSObject* nameSpace(const QString& name);

    // What objects inherit from.
    JSObject* applicationObjectPrototype() const { return m_applicationObjectPrototype; }
    JSObject* applicationContextPrototype() const { return m_applicationContextPrototype; }
    /// Of a native class, or of the next one that it derives from; null without.
    JSObject* nativePrototype(void* typeId) const;
    void addNativePrototype(void* typeId, void* super, JSObject* prototype);

    /// The one object of the script for an application.
    JS::PersistentRootedObject& contextObject(int applicationId);

    /// A number that the function has as long as the realm is there.
    int numberOfFunction(JS::HandleObject function);

private:
    JS::PersistentRootedObject m_global;
    JS::PersistentRootedObject m_errorClasses;
    JS::PersistentRootedObject m_stepContext;
    JS::PersistentRootedObject m_tableMaker;
    JS::PersistentRootedObject m_applicationObjectPrototype;
    JS::PersistentRootedObject m_applicationContextPrototype;
    /// A WeakMap.
    JS::PersistentRootedObject m_functionNumbers;
    int m_lastFunctionNumber = 0;
    NativeClasses<std::shared_ptr<JS::PersistentRootedObject>> m_nativePrototypes;
    std::unordered_map<int, JS::PersistentRootedObject> m_contextObjects;
    Modules m_modules;
};

}  // namespace Tamrix::JavaScriptPlugin
