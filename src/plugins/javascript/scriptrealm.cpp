#include "plugins/javascript/scriptrealm.h"

#include <QStringList>

#include "interpreter/language/prelude.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/javascriptsteps.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/promises.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

template <ScriptOutput::Stream stream>
void writeLine(const JS::CallArgs& arguments) {
    QStringList texts;
    for (unsigned index = 0; index < arguments.length(); ++index)
        texts.append(textOf(arguments[index]));
    // Each line of them is one of the results.
    for (const QString& part : {texts.join(' '), QStringLiteral("\n")})
        LanguageInterpreter::print(Interpreter::JavaScript, stream, part);
}

JS::Value setTimer(const JS::CallArgs& arguments) {
    if (!isFunction(arguments.get(0)))
        throwBuiltIn(JSProto_TypeError, QStringLiteral("setTimeout() requires a function"));
    // Without a number of milliseconds it is none, and a short time.
    const auto milliseconds = given<double>(JS::ToNumber, arguments.get(1));
    // What stands behind the time is for the function.
    ValueRoots words;
    for (unsigned index = 1; index < arguments.length(); ++index)
        words.add(index == 1 ? JS::UndefinedValue() : arguments[index].get());
    const ObjectRoot function(arguments[0]);
    ValueRoot bound;
    checked(JS_CallFunctionName(engineContext(), function, "bind", words, &bound));
    return JS::Int32Value(addTimer(ObjectRoot(bound), milliseconds));
}

void clearTimer(const JS::CallArgs& arguments) {
    if (arguments.get(0).isInt32())
        removeTimer(arguments[0].toInt32());
}

/// Text as it is, without an end of line.
void writeText(const JS::CallArgs& arguments) {
    LanguageInterpreter::print(Interpreter::JavaScript, ScriptOutput::Stdout,
                               plainText(arguments.get(0)));
}

void exitScript(const JS::CallArgs& arguments) {
    int status = 0;
    checked(JS::ToInt32(engineContext(), arguments.get(0), &status));
    Engine::self().exitNow(status);
    throw ScriptErrorSet();
}

constexpr JSFunctionSpec ownFunctions[] = {
    JS_FN("write", native<writeText>, 1, JSPROP_ENUMERATE),
    JS_FN("exit", native<exitScript>, 1, JSPROP_ENUMERATE),
    JS_FS_END,
};

constexpr JSFunctionSpec consoleFunctions[] = {
    JS_FN("log", native<writeLine<ScriptOutput::Stdout>>, 1, 0),
    JS_FN("info", native<writeLine<ScriptOutput::Stdout>>, 1, 0),
    JS_FN("debug", native<writeLine<ScriptOutput::Stdout>>, 1, 0),
    JS_FN("warn", native<writeLine<ScriptOutput::Stderr>>, 1, 0),
    JS_FN("error", native<writeLine<ScriptOutput::Stderr>>, 1, 0),
    JS_FS_END,
};

constexpr JSFunctionSpec globalFunctions[] = {
    JS_FN("print", native<writeLine<ScriptOutput::Stdout>>, 1, 0),
    JS_FN("setTimeout", native<setTimer>, 1, 0),
    JS_FN("clearTimeout", native<clearTimer>, 1, 0),
    JS_FS_END,
};

/// Gives a new global object what scripts find there beyond the functions of the test system:
/// `console`, `print`, timers, the functions for steps, `RemoteSystem` and the namespace `tamrix`.
/// Returns what the library itself needs. `stepContext` has the functions for what steps keep.
JSObject* addLibrary(JS::HandleObject global, JS::HandleObject stepContext) {
    const ObjectRoot own(newObject(ownFunctions));
    defineProperty(global, QStringLiteral("console"), newObject(consoleFunctions), 0);
    checked(JS_DefineFunctions(engineContext(), global, globalFunctions));
    addStepFunctions(global);
    const ValueRoot library(
        evaluateOwn(QString::fromUtf8(preludeSource("javascript/library.js")), "<tamrix>"));
    ValueRoots arguments;
    arguments.add(JS::ObjectValue(*stepContext)).add(JS::ObjectValue(*own));
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

ScriptRealm::ScriptRealm() : m_global(newGlobal()) {
    const JSAutoRealm inside(engineContext(), m_global);
    m_proxyClass = propertyOf(m_global, "Proxy");
    m_stepContext = newObject();
    m_library = addLibrary(m_global, m_stepContext);
    m_objectPrototype = makeApplicationObjectPrototype();
    m_objectHandler = makeApplicationObjectHandler();
    m_contextPrototype = newObject();
    m_contexts = newObject();
    m_functionNumbers = checked(JS::NewWeakMapObject(engineContext()));
}

ScriptRealm* ScriptRealm::current() {
    auto* const interpreter = JavaScriptInterpreter::active();
    return interpreter ? &interpreter->realm() : nullptr;
}

int ScriptRealm::numberOfFunction(JS::HandleObject function) {
    ValueRoot number(given<JS::Value>(JS::GetWeakMapEntry, m_functionNumbers, function));
    if (!number.isInt32()) {
        number.setInt32(++m_lastFunctionNumber);
        checked(JS::SetWeakMapEntry(engineContext(), m_functionNumbers, function, number));
    }
    return number.toInt32();
}

}  // namespace Tamrix::JavaScriptPlugin
