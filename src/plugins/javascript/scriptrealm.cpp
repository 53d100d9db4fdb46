#include "plugins/javascript/scriptrealm.h"

#include <js/GlobalObject.h>
#include <js/Realm.h>
#include <js/RealmOptions.h>
#include <js/WeakMap.h>

#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/scriptlibrary.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

constexpr JSClass globalClass = {
    "global", JSCLASS_GLOBAL_FLAGS, &JS::DefaultGlobalClassOps, nullptr, nullptr, nullptr};

JSObject* makeGlobal(JSContext* context) {
    JS::RealmOptions options;
    options.creationOptions().setNewCompartmentAndZone();
    return checked(
        JS_NewGlobalObject(context, &globalClass, nullptr, JS::FireOnNewGlobalHook, options));
}

}  // namespace

ScriptRealm::ScriptRealm()
    : m_global(engineContext(), makeGlobal(engineContext())), m_modules(engineContext()) {
    JSContext* const context = engineContext();
    const JSAutoRealm inside(context, m_global);
    JS::RootedObject library(context, addScriptLibrary(m_global));
    m_errorClasses.init(context, propertyOf(library, "classes").toObjectOrNull());
    m_stepContext.init(context, propertyOf(library, "context").toObjectOrNull());
    m_tableMaker.init(context, propertyOf(library, "makeTable").toObjectOrNull());
    m_applicationObjectPrototype.init(context, makeApplicationObjectPrototype());
    m_applicationContextPrototype.init(context, checked(JS_NewPlainObject(context)));
    m_functionNumbers.init(context, checked(JS::NewWeakMapObject(context)));
}

ScriptRealm::~ScriptRealm() = default;

ScriptRealm* ScriptRealm::current() {
    auto* const interpreter = JavaScriptInterpreter::active();
    return interpreter ? &interpreter->realm() : nullptr;
}

JS::Value ScriptRealm::errorClass(const char* name) const {
    JS::RootedObject classes(engineContext(), m_errorClasses);
    return propertyOf(classes, name);
}

JSObject* ScriptRealm::nameSpace(const QString& name) {
    JS::RootedObject global(engineContext(), m_global);
    JS::RootedValue known(engineContext(), propertyOf(global, name.toUtf8().constData()));
    if (known.isObject())
        return &known.toObject();
    JS::RootedObject made(engineContext(), checked(JS_NewPlainObject(engineContext())));
    defineProperty(global, name, JS::ObjectValue(*made), 0);
    return made;
}

JSObject* ScriptRealm::nativePrototype(void* typeId) const {
    const auto* const known = m_nativePrototypes.find(typeId);
    return known ? (*known)->get() : nullptr;
}

void ScriptRealm::addNativePrototype(void* typeId, void* super, JSObject* prototype) {
    m_nativePrototypes.add(
        typeId, super, std::make_shared<JS::PersistentRootedObject>(engineContext(), prototype));
}

JS::PersistentRootedObject& ScriptRealm::contextObject(int applicationId) {
    JS::PersistentRootedObject& known = m_contextObjects[applicationId];
    if (!known.initialized())
        known.init(engineContext());
    return known;
}

int ScriptRealm::numberOfFunction(JS::HandleObject function) {
    JSContext* const context = engineContext();
    JS::RootedObject numbers(context, m_functionNumbers);
    JS::RootedValue number(context);
    checked(JS::GetWeakMapEntry(context, numbers, function, &number));
    if (number.isInt32())
        return number.toInt32();
    number.setInt32(++m_lastFunctionNumber);
    checked(JS::SetWeakMapEntry(context, numbers, function, number));
    return m_lastFunctionNumber;
}

}  // namespace Tamrix::JavaScriptPlugin
