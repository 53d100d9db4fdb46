#include "plugins/javascript/scriptrealm.h"

#include <js/Conversions.h>
#include <js/GlobalObject.h>
#include <js/RealmOptions.h>
#include <js/WeakMap.h>

#include <QStringList>

#include "interpreter/language/prelude.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/javascriptsteps.h"
#include "plugins/javascript/jobqueue.h"
#include "plugins/javascript/objectproxy.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

QString joinedTexts(const JS::CallArgs& arguments) {
    QStringList texts;
    for (unsigned index = 0; index < arguments.length(); ++index)
        texts.append(textOf(arguments[index]));
    return texts.join(' ');
}

template <ScriptOutput::Stream stream>
void writeLine(const JS::CallArgs& arguments) {
    const QString line = joinedTexts(arguments);
    auto* const interpreter = JavaScriptInterpreter::active();
    // Each line of it is one of the results.
    for (const QString& part : {line, QStringLiteral("\n")}) {
        if (interpreter)
            interpreter->output().write(stream, part);
        else
            ScriptOutput::writeToProcess(stream, part);
    }
}

JS::Value setTimer(const JS::CallArgs& arguments) {
    if (!isFunction(arguments.get(0)))
        throwBuiltIn(JSEXN_TYPEERR, QStringLiteral("setTimeout() requires a function"));
    double milliseconds = 0;
    checked(arguments.length() < 2 || JS::ToNumber(engineContext(), arguments[1], &milliseconds));
    return JS::Int32Value(Engine::self().jobs().addTimer(ObjectRoot(arguments[0]), milliseconds));
}

void clearTimer(const JS::CallArgs& arguments) {
    if (arguments.get(0).isInt32())
        Engine::self().jobs().removeTimer(arguments[0].toInt32());
}

/// Text as it is, without an end of line.
void writeText(const JS::CallArgs& arguments) {
    const QString text = plainText(arguments.get(0));
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->output().write(ScriptOutput::Stdout, text);
}

void exitScript(const JS::CallArgs& arguments) {
    int status = 0;
    checked(JS::ToInt32(engineContext(), arguments.get(0), &status));
    Engine::self().exitNow(status);
    throw ScriptErrorSet();
}

constexpr NativeRow ownFunctions[] = {{"write", native<writeText>}, {"exit", native<exitScript>}};

constexpr NativeRow consoleFunctions[] = {
    {"log", native<writeLine<ScriptOutput::Stdout>>},
    {"info", native<writeLine<ScriptOutput::Stdout>>},
    {"debug", native<writeLine<ScriptOutput::Stdout>>},
    {"warn", native<writeLine<ScriptOutput::Stderr>>},
    {"error", native<writeLine<ScriptOutput::Stderr>>},
};

constexpr NativeRow globalFunctions[] = {
    {"print", native<writeLine<ScriptOutput::Stdout>>},
    {"setTimeout", native<setTimer>},
    {"clearTimeout", native<clearTimer>},
};

/// Gives a new global object what scripts find there beyond the functions of the test system:
/// `console`, `print`, timers, the functions for steps, `RemoteSystem` and the namespace `tamrix`.
/// Returns what the library itself needs.
JSObject* addLibrary(JS::HandleObject global) {
    const ObjectRoot console(newObject());
    defineFunctions(console, consoleFunctions);
    defineProperty(global, QStringLiteral("console"), JS::ObjectValue(*console), 0);
    defineFunctions(global, globalFunctions);
    addStepFunctions(global);

    const ValueRoot library(
        evaluateOwn(QString::fromUtf8(preludeSource("javascript/library.js")), "<tamrix>"));
    const ObjectRoot scopes(newObject());
    addScopeFunctions(scopes);
    const ObjectRoot own(newObject());
    defineFunctions(own, ownFunctions, JSPROP_ENUMERATE);
    ValueRoots arguments;
    arguments.add(JS::ObjectValue(*scopes)).add(JS::ObjectValue(*own));
    return &resultOf(library, arguments).toObject();
}

}  // namespace

JSObject* newGlobal() {
    static constexpr JSClass s_class = {
        "global", JSCLASS_GLOBAL_FLAGS, &JS::DefaultGlobalClassOps, nullptr, nullptr, nullptr};
    JS::RealmOptions options;
    options.creationOptions().setNewCompartmentAndZone().setWeakRefsEnabled(
        JS::WeakRefSpecifier::EnabledWithoutCleanupSome);
    return checked(
        JS_NewGlobalObject(engineContext(), &s_class, nullptr, JS::FireOnNewGlobalHook, options));
}

ScriptRealm::ScriptRealm() : m_global(engineContext(), newGlobal()), m_modules(engineContext()) {
    JSContext* const context = engineContext();
    const JSAutoRealm inside(context, m_global);
    m_proxyClass.init(context, propertyOf(m_global, "Proxy"));
    m_library.init(context, addLibrary(m_global));
    m_objectPrototype.init(context, makeApplicationObjectPrototype());
    m_objectHandler.init(context, makeApplicationObjectHandler());
    m_contextPrototype.init(context, newObject());
    m_contexts.init(context, newObject());
    m_functionNumbers.init(context, checked(JS::NewWeakMapObject(context)));
}

ScriptRealm::~ScriptRealm() = default;

ScriptRealm* ScriptRealm::current() {
    auto* const interpreter = JavaScriptInterpreter::active();
    return interpreter ? &interpreter->realm() : nullptr;
}

JS::Value ScriptRealm::errorClass(const char* name) const {
    return propertyOf(&ofLibrary("classes").toObject(), name);
}

JSObject* ScriptRealm::nativePrototype(void* typeId) const {
    const auto* const known = m_nativePrototypes.find(typeId);
    return known ? (*known)->get() : nullptr;
}

void ScriptRealm::addNativePrototype(void* typeId, void* super, JSObject* prototype) {
    m_nativePrototypes.add(
        typeId, super, std::make_shared<JS::PersistentRootedObject>(engineContext(), prototype));
}

int ScriptRealm::numberOfFunction(JS::HandleObject function) {
    ValueRoot number;
    checked(JS::GetWeakMapEntry(engineContext(), m_functionNumbers, function, &number));
    if (!number.isInt32()) {
        number.setInt32(++m_lastFunctionNumber);
        checked(JS::SetWeakMapEntry(engineContext(), m_functionNumbers, function, number));
    }
    return number.toInt32();
}

}  // namespace Tamrix::JavaScriptPlugin
