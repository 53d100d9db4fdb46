#include "plugins/javascript/debuggerrealm.h"

#include <js/Array.h>
#include <js/Debug.h>
#include <js/Exception.h>
#include <js/GlobalObject.h>
#include <js/RealmOptions.h>
#include <js/Wrapper.h>

#include <concepts>

#include "interpreter/language/prelude.h"
#include "plugins/javascript/enginefiles.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/nativefunctions.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

constexpr JSClass globalClass = {
    "global", JSCLASS_GLOBAL_FLAGS, &JS::DefaultGlobalClassOps, nullptr, nullptr, nullptr};

// What goes to the debugger, made in its realm.
JS::Value debuggerValue(std::same_as<bool> auto value) {
    return JS::BooleanValue(value);
}
JS::Value debuggerValue(const QString& value) {
    return toJsText(value);
}
JS::Value debuggerValue(const FrameHandle& value) {
    return value ? JS::ObjectValue(**value) : JS::NullValue();
}
JS::Value debuggerValue(JS::HandleObject value) {
    return JS::ObjectValue(*value);
}
JS::Value debuggerValue(const std::vector<int>& values) {
    JS::RootedValueVector numbers(engineContext());
    for (const int value : values)
        checked(numbers.append(JS::Int32Value(value)));
    return JS::ObjectValue(*checked(JS::NewArrayObject(engineContext(), numbers)));
}

/// A value of the debugger's realm as one of the script's.
JS::Value taken(const JS::Value& value) {
    JSContext* const context = engineContext();
    JS::RootedValue own(context, value);
    if (own.isObject() && js::IsWrapper(&own.toObject()))
        own.setObject(*js::UncheckedUnwrap(&own.toObject()));
    checked(JS_WrapValue(context, &own));
    return own;
}

/// The elements of a list of the debugger's realm.
void takeElements(const JS::Value& list, JS::MutableHandleValueVector elements) {
    JS::RootedObject array(engineContext(), &list.toObject());
    const JSAutoRealm inside(engineContext(), array);
    elementsOf(array, elements);
}

bool tellIsLibraryFunction(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    JS::RootedObject object(context,
                            arguments.get(0).isObject() ? &arguments[0].toObject() : nullptr);
    arguments.rval().setBoolean(object && isLibraryFunction(js::UncheckedUnwrap(object)));
    return true;
}

}  // namespace

DebuggerRealm& DebuggerRealm::self() {
    // Never destroyed, as the engine.
    static auto* const s_instance = new DebuggerRealm;
    return *s_instance;
}

DebuggerRealm::DebuggerRealm() {
    JSContext* const context = engineContext();
    JS::RealmOptions options;
    options.creationOptions().setNewCompartmentAndZone();
    JS::RootedObject global(context, checked(JS_NewGlobalObject(context, &globalClass, nullptr,
                                                                JS::FireOnNewGlobalHook, options)));
    m_watched.init(context);
    m_global.init(context, global);
    const JSAutoRealm inside(context, global);
    checked(JS_DefineDebuggerObject(context, global) && JS_InitReflectParse(context, global) &&
            JS_DefineFunction(context, global, "tellLine", tellLine, 2, 0) &&
            JS_DefineFunction(context, global, "tellError", tellError, 1, 0) &&
            JS_DefineFunction(context, global, "isLibraryFunction", tellIsLibraryFunction, 1, 0));
    evaluateOwn(QString::fromUtf8(preludeSource("javascript/debugger.js")), "<tamrix debugger>");
}

template <typename... Values>
JS::Value DebuggerRealm::call(const char* function, const Values&... values) {
    JSContext* const context = engineContext();
    JS::RootedObject global(context, m_global);
    JS::RootedValue result(context);
    const JSAutoRealm inside(context, global);
    JS::RootedValueVector arguments(context);
    JS::RootedValue value(context);
    [[maybe_unused]] const auto add = [&](const JS::Value& each) {
        value = each;
        checked(JS_WrapValue(context, &value) && arguments.append(value));
    };
    (add(debuggerValue(values)), ...);
    checked(JS_CallFunctionName(context, global, function, arguments, &result));
    return result;
}

template <typename... Values>
JS::Value DebuggerRealm::callForCompletion(const char* function, const Values&... values) {
    JSContext* const context = engineContext();
    JS::RootedValueVector parts(context);
    takeElements(call(function, values...), &parts);
    const QString kind = fromJsString(parts[0].toString());
    // What nothing catches leaves nothing pending.
    checked(kind != QLatin1String("ended"));
    JS::RootedValue value(context, taken(parts[1]));
    if (kind != QLatin1String("thrown"))
        return value;
    JS::RootedValue stack(context, taken(parts[2]));
    JS::RootedObject frames(context, stack.isObject() ? &stack.toObject() : nullptr);
    const JS::ExceptionStack thrown(context, value, frames);
    JS::SetPendingExceptionStack(context, thrown);
    throw ScriptErrorSet();
}

template <typename... Values>
std::vector<DebuggerRealm::Variable> DebuggerRealm::callForVariables(const char* function,
                                                                     const Values&... values) {
    JSContext* const context = engineContext();
    JS::RootedValueVector parts(context);
    takeElements(call(function, values...), &parts);
    std::vector<Variable> found;
    JS::RootedValue value(context);
    for (std::size_t index = 0; index + 1 < parts.length(); index += 2) {
        value = taken(parts[index + 1]);
        found.push_back({fromJsString(parts[index].toString()), {context, value}});
    }
    return found;
}

// Watching

void DebuggerRealm::watch(JS::HandleObject global, DebuggeeListener& listener) {
    m_listener = &listener;
    m_watched = global;
    call("watch", global);
}

void DebuggerRealm::unwatch() {
    m_listener = nullptr;
    m_watched = nullptr;
    call("unwatch");
}

void DebuggerRealm::setStepping(bool isStepping) {
    call("setStepping", isStepping);
}

void DebuggerRealm::setSilent(bool isSilent) {
    call("setSilent", isSilent);
}

void DebuggerRealm::setBreakLines(const QString& file, const std::vector<int>& lines) {
    call("setBreakLines", fileForEngine(file), lines);
}

template <typename Tell>
bool DebuggerRealm::tell(Tell tell) {
    DebuggerRealm& own = self();
    if (!own.m_listener)
        return true;
    return guarded("debugger", [&] {
        const JSAutoRealm inside(engineContext(), own.m_watched);
        tell(*own.m_listener);
        return true;
    });
}

bool DebuggerRealm::tellLine(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const QString file = fileFromEngine(arguments[0].toString());
    const int line = arguments[1].toInt32();
    arguments.rval().setUndefined();
    return tell([&](DebuggeeListener& listener) { listener.lineReached(file, line); });
}

bool DebuggerRealm::tellError(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    JS::RootedValue exception(context, arguments.get(0));
    arguments.rval().setUndefined();
    return tell([&](DebuggeeListener& listener) {
        exception = taken(exception);
        listener.errorThrown(exception);
    });
}

// Looking

std::vector<DebuggerRealm::Frame> DebuggerRealm::frames() {
    JSContext* const context = engineContext();
    JS::RootedValueVector parts(context);
    takeElements(call("frames"), &parts);
    std::vector<Frame> found;
    for (std::size_t index = 0; index + 3 < parts.length(); index += 4) {
        found.push_back(
            {std::make_shared<JS::PersistentRootedObject>(context, &parts[index].toObject()),
             fileFromEngine(parts[index + 1].toString()),
             static_cast<int>(parts[index + 2].toNumber()),
             static_cast<int>(parts[index + 3].toNumber())});
    }
    return found;
}

std::vector<DebuggerRealm::Variable> DebuggerRealm::variables(const FrameHandle& frame) {
    return callForVariables("variables", frame);
}

JS::Value DebuggerRealm::evaluate(const FrameHandle& frame, const QString& code) {
    const JS::RootedObject global(engineContext(), JS::CurrentGlobalOrNull(engineContext()));
    return callForCompletion("evaluate", frame, global, code, QStringLiteral("<debugger>"));
}

JS::Value DebuggerRealm::evaluateInCaller(const QString& code, const char* file) {
    const JS::RootedObject global(engineContext(), JS::CurrentGlobalOrNull(engineContext()));
    return callForCompletion("evaluateInCaller", global, code, QString::fromLatin1(file));
}

std::vector<DebuggerRealm::Variable> DebuggerRealm::explainCaller() {
    const JS::RootedObject global(engineContext(), JS::CurrentGlobalOrNull(engineContext()));
    return callForVariables("explainCaller", global);
}

}  // namespace Tamrix::JavaScriptPlugin
