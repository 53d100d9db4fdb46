#include "plugins/javascript/debuggerrealm.h"

#include <js/Array.h>
#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/Debug.h>
#include <js/Exception.h>
#include <js/GlobalObject.h>
#include <js/RealmOptions.h>
#include <js/SourceText.h>
#include <js/Wrapper.h>

#include <cstring>

#include "plugins/javascript/errors.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

constexpr JSClass globalClass = {
    "global", JSCLASS_GLOBAL_FLAGS, &JS::DefaultGlobalClassOps, nullptr, nullptr, nullptr};

/// The engine offers its debugger to code of the language alone. What decides is elsewhere: here is
/// asked and handed on, no more. Values of the script pass as wrappers, which the caller takes off.
constexpr const char* source = R"js(
"use strict";
const dbg = new Debugger();
const breakLines = new Map();
let silent = false;
let stepping = false;

// Values

const bare = value => value && value.unsafeDereference ? value.unsafeDereference() : value;

function completed(completion) {
    if (completion === null)
        return ["ended"];
    if ("throw" in completion)
        return ["thrown", bare(completion.throw), completion.stack];
    return ["returned", bare(completion.return)];
}

// Frames. Code of the library has a name in <>.

const isScript = frame =>
    frame.script && frame.script.url && !frame.script.url.startsWith("<");

function scriptFrame(frame) {
    while (frame && (frame.type === "wasmcall" || !isScript(frame)))
        frame = frame.older;
    return frame;
}

function frames() {
    const found = [];
    for (let frame = scriptFrame(dbg.getNewestFrame()); frame; frame = scriptFrame(frame.older)) {
        const place = frame.script.getOffsetLocation(frame.offset);
        found.push([frame, frame.script.url, place.lineNumber, place.columnNumber + 1]);
    }
    return found;
}

function variables(frame) {
    const known = new Set();
    const found = [];
    const add = (name, value) => {
        const hasNone = value && typeof value === "object" &&
            (value.uninitialized || value.missingArguments);
        if (hasNone || known.has(name))
            return;
        known.add(name);
        found.push([name, value && value.optimizedOut ? "<optimized out>" : bare(value)]);
    };
    for (let scope = frame.environment; scope; scope = scope.parent) {
        if (scope.type === "declarative") {
            for (const name of scope.names())
                add(name, scope.getVariable(name));
        } else if (scope.type === "object") {
            for (const name of scope.object.getOwnPropertyNames()) {
                const property = scope.object.getOwnPropertyDescriptor(name);
                if (property && property.enumerable && "value" in property)
                    add(name, property.value);
            }
        }
    }
    return found;
}

// Code that is handed over

function evaluate(frame, global, code) {
    return completed(frame ? frame.eval(code, {url: "<debugger>"})
                           : dbg.makeGlobalObjectReference(global)
                                .executeInGlobal(code, {url: "<debugger>"}));
}

function evaluateInCaller(global, code, url) {
    const wasKnown = dbg.hasDebuggee(global);
    if (!wasKnown)
        dbg.addDebuggee(global);
    try {
        const frame = scriptFrame(dbg.getNewestFrame());
        return completed(frame ? frame.eval(code, {url})
                               : dbg.makeGlobalObjectReference(global)
                                    .executeInGlobal(code, {url}));
    } finally {
        if (!wasKnown)
            dbg.removeDebuggee(global);
    }
}

// Lines

function reach(frame, line) {
    frame.lastLine = line;
    tellLine(frame.script.url, line);
}

function onStep() {
    if (silent || !isScript(this))
        return;
    const place = this.script.getOffsetMetadata(this.offset);
    if (place.isStepStart && place.lineNumber !== this.lastLine)
        reach(this, place.lineNumber);
}

function onEnterFrame(frame) {
    if (!isScript(frame))
        return;
    // A generator or an asynchronous function goes on.
    frame.lastLine = undefined;
    frame.onStep = onStep;
}

function setStepping(isStepping) {
    if (stepping === isStepping)
        return;
    stepping = isStepping;
    dbg.onEnterFrame = isStepping ? onEnterFrame : undefined;
    for (let frame = dbg.getNewestFrame(); frame; frame = frame.older) {
        if (!isScript(frame))
            continue;
        frame.onStep = isStepping ? onStep : undefined;
        frame.lastLine = frame.script.getOffsetLocation(frame.offset).lineNumber;
    }
}

const breakPoint = {
    hit(frame) {
        const line = frame.script.getOffsetLocation(frame.offset).lineNumber;
        if (!silent && !(stepping && frame.lastLine === line))
            reach(frame, line);
    }
};

function setBreakPoints(script) {
    for (const line of breakLines.get(script.url) || []) {
        for (const offset of script.getLineOffsets(line))
            script.setBreakpoint(offset, breakPoint);
    }
}

function setBreakLines(url, lines) {
    breakLines.set(url, lines);
    for (const script of dbg.findScripts({url})) {
        script.clearBreakpoint(breakPoint);
        setBreakPoints(script);
    }
}

function onNewScript(script) {
    if (!breakLines.has(script.url))
        return;
    setBreakPoints(script);
    for (const child of script.getChildScripts())
        onNewScript(child);
}

// Errors

function isAwaited(frame) {
    const promise = frame.asyncPromise;
    return Boolean(promise) && promise.getPromiseReactions().length > 0;
}

function isCaught(frame) {
    for (; frame; frame = frame.older) {
        if (frame.script && frame.script.isInCatchScope(frame.offset))
            return true;
        if (isAwaited(frame))
            return true;
    }
    return false;
}

function onExceptionUnwind(frame, value) {
    if (!silent && isScript(frame) && !isCaught(frame))
        tellError(bare(value));
}

function watch(global) {
    dbg.addDebuggee(global);
    dbg.onNewScript = onNewScript;
    dbg.onExceptionUnwind = onExceptionUnwind;
}

function unwatch() {
    setStepping(false);
    dbg.clearAllBreakpoints();
    breakLines.clear();
    dbg.onNewScript = undefined;
    dbg.onExceptionUnwind = undefined;
    dbg.removeAllDebuggees();
    silent = false;
}

function setSilent(isSilent) { silent = isSilent; }
)js";

/// A value of the debugger's realm as one of the script's.
JS::Value taken(const JS::Value& value) {
    JSContext* const context = engineContext();
    JS::RootedValue own(context, value);
    if (own.isObject() && js::IsWrapper(&own.toObject()))
        own.setObject(*js::UncheckedUnwrap(&own.toObject()));
    checked(JS_WrapValue(context, &own));
    return own;
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
    checked(JS_DefineDebuggerObject(context, global) &&
            JS_DefineFunction(context, global, "tellLine", tellLine, 2, 0) &&
            JS_DefineFunction(context, global, "tellError", tellError, 1, 0));
    JS::CompileOptions compileOptions(context);
    compileOptions.setFileAndLine("<tamrix debugger>", 1);
    JS::SourceText<mozilla::Utf8Unit> text;
    checked(text.init(context, source, std::strlen(source), JS::SourceOwnership::Borrowed));
    JS::RootedValue ignored(context);
    checked(JS::Evaluate(context, compileOptions, text, &ignored));
}

JS::Value DebuggerRealm::call(const char* function, JS::HandleValueVector arguments) {
    JSContext* const context = engineContext();
    JS::RootedObject global(context, m_global);
    JS::RootedValue result(context);
    const JSAutoRealm inside(context, global);
    JS::RootedValueVector own(context);
    JS::RootedValue value(context);
    for (std::size_t index = 0; index < arguments.length(); ++index) {
        value = arguments[index];
        checked(JS_WrapValue(context, &value) && own.append(value));
    }
    checked(JS_CallFunctionName(context, global, function, own, &result));
    return result;
}

JS::Value DebuggerRealm::completed(JS::HandleValue completion) {
    JSContext* const context = engineContext();
    JS::RootedValue value(context);
    JS::RootedValue stack(context);
    QString kind;
    {
        JS::RootedObject parts(context, &completion.toObject());
        const JSAutoRealm inside(context, parts);
        JS::RootedValueVector elements(context);
        elementsOf(parts, &elements);
        kind = fromJsString(elements[0].toString());
        value = elements.length() > 1 ? elements[1] : JS::UndefinedHandleValue;
        stack = elements.length() > 2 ? elements[2] : JS::UndefinedHandleValue;
    }
    // What nothing catches leaves nothing pending.
    checked(kind != QLatin1String("ended"));
    value = taken(value);
    if (kind != QLatin1String("thrown"))
        return value;
    stack = taken(stack);
    JS::RootedObject frames(context, stack.isObject() ? &stack.toObject() : nullptr);
    const JS::ExceptionStack thrown(context, value, frames);
    JS::SetPendingExceptionStack(context, thrown);
    throw ScriptErrorSet();
}

// Watching

void DebuggerRealm::watch(JS::HandleObject global, DebuggeeListener& listener) {
    m_listener = &listener;
    m_watched = global;
    JS::RootedValueVector arguments(engineContext());
    checked(arguments.append(JS::ObjectValue(*global)));
    call("watch", arguments);
}

void DebuggerRealm::unwatch() {
    m_listener = nullptr;
    m_watched = nullptr;
    const JS::RootedValueVector none(engineContext());
    call("unwatch", none);
}

void DebuggerRealm::setStepping(bool isStepping) {
    JS::RootedValueVector arguments(engineContext());
    checked(arguments.append(JS::BooleanValue(isStepping)));
    call("setStepping", arguments);
}

void DebuggerRealm::setSilent(bool isSilent) {
    JS::RootedValueVector arguments(engineContext());
    checked(arguments.append(JS::BooleanValue(isSilent)));
    call("setSilent", arguments);
}

void DebuggerRealm::setBreakLines(const QString& file, const std::vector<int>& lines) {
    JSContext* const context = engineContext();
    // The list is the debugger's own.
    const JSAutoRealm inside(context, m_global);
    JS::RootedValueVector numbers(context);
    for (const int line : lines)
        checked(numbers.append(JS::Int32Value(line)));
    JS::RootedValueVector arguments(context);
    checked(arguments.append(toJsText(file)) &&
            arguments.append(JS::ObjectValue(*checked(JS::NewArrayObject(context, numbers)))));
    call("setBreakLines", arguments);
}

bool DebuggerRealm::tellLine(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    DebuggerRealm& own = self();
    arguments.rval().setUndefined();
    return !own.m_listener || guarded([] { return QStringLiteral("debugger"); },
                                      [&] {
                                          const QString file =
                                              fromJsString(arguments[0].toString());
                                          const JSAutoRealm inside(context, own.m_watched);
                                          own.m_listener->lineReached(file, arguments[1].toInt32());
                                          return true;
                                      });
}

bool DebuggerRealm::tellError(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    DebuggerRealm& own = self();
    JS::RootedValue exception(context, arguments.get(0));
    arguments.rval().setUndefined();
    return !own.m_listener || guarded([] { return QStringLiteral("debugger"); },
                                      [&] {
                                          const JSAutoRealm inside(context, own.m_watched);
                                          exception = taken(exception);
                                          own.m_listener->errorThrown(exception);
                                          return true;
                                      });
}

// Looking

std::vector<DebuggerRealm::Frame> DebuggerRealm::frames() {
    JSContext* const context = engineContext();
    std::vector<Frame> found;
    const JS::RootedValueVector none(context);
    const JSAutoRealm inside(context, m_global);
    JS::RootedObject list(context, &call("frames", none).toObject());
    JS::RootedValueVector all(context);
    elementsOf(list, &all);
    for (const JS::Value& each : all) {
        JS::RootedObject parts(context, &each.toObject());
        JS::RootedValueVector elements(context);
        elementsOf(parts, &elements);
        found.push_back(
            {std::make_shared<JS::PersistentRootedObject>(context, &elements[0].toObject()),
             fromJsString(elements[1].toString()), static_cast<int>(elements[2].toNumber()),
             static_cast<int>(elements[3].toNumber())});
    }
    return found;
}

std::vector<DebuggerRealm::Variable> DebuggerRealm::variables(const FrameHandle& frame) {
    JSContext* const context = engineContext();
    JS::RootedObject scriptGlobal(context, JS::CurrentGlobalOrNull(context));
    std::vector<Variable> found;
    const JSAutoRealm inside(context, m_global);
    JS::RootedValueVector arguments(context);
    checked(arguments.append(JS::ObjectValue(**frame)));
    JS::RootedObject list(context, &call("variables", arguments).toObject());
    JS::RootedValueVector all(context);
    elementsOf(list, &all);
    JS::RootedValue value(context);
    for (const JS::Value& each : all) {
        JS::RootedObject parts(context, &each.toObject());
        JS::RootedValueVector elements(context);
        elementsOf(parts, &elements);
        const QString name = fromJsString(elements[0].toString());
        const JSAutoRealm back(context, scriptGlobal);
        value = taken(elements[1]);
        found.push_back({name, {context, value}});
    }
    return found;
}

JS::Value DebuggerRealm::evaluate(const FrameHandle& frame, const QString& code) {
    JSContext* const context = engineContext();
    JS::RootedValueVector arguments(context);
    JS::RootedValue completion(context);
    JS::RootedValue global(context, JS::ObjectValue(*JS::CurrentGlobalOrNull(context)));
    {
        const JSAutoRealm inside(context, m_global);
        checked(arguments.append(frame ? JS::ObjectValue(**frame) : JS::NullValue()) &&
                arguments.append(global) && arguments.append(toJsText(code)));
        completion = call("evaluate", arguments);
    }
    return completed(completion);
}

JS::Value DebuggerRealm::evaluateInCaller(const QString& code, const char* file) {
    JSContext* const context = engineContext();
    JS::RootedValueVector arguments(context);
    checked(arguments.append(JS::ObjectValue(*JS::CurrentGlobalOrNull(context))) &&
            arguments.append(toJsText(code)) &&
            arguments.append(toJsText(QString::fromLatin1(file))));
    JS::RootedValue completion(context, call("evaluateInCaller", arguments));
    return completed(completion);
}

}  // namespace Tamrix::JavaScriptPlugin
