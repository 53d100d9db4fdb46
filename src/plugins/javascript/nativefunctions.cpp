#include "plugins/javascript/nativefunctions.h"

#include <js/experimental/JitInfo.h>

#include <QHash>
#include <utility>

#include "interpreter/language/directcall.h"
#include "interpreter/language/objectcalls.h"
#include "plugins/javascript/javascriptinterpreter.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Where a function of the script keeps what it calls that is no native function.
constexpr std::size_t targetSlot = 0;

// Native functions

/// What the engine keeps with a function of the script, where each call finds it at once.
struct Target : JSJitInfo {
    explicit Target(NativeFunction called) : JSJitInfo(), function(std::move(called)) {
        // Nothing that the engine could take for granted.
        type_ = StaticMethod;
        aliasSet_ = AliasEverything;
        returnType_ = JSVAL_TYPE_UNKNOWN;
    }

    NativeFunction function;
};

/// All that scripts know, by what makes them different. They live for the process, as a function of
/// the script may outlive its case.
const Target* kept(const NativeFunction& function) {
    static auto* const s_functions = new QHash<QString, const Target*>;
    const QString key =
        QStringLiteral("%1/%2/%3")
            .arg(function.displayName(), QString::number(static_cast<int>(function.kind())),
                 QString::number(reinterpret_cast<quintptr>(function.address())));
    const Target*& known = (*s_functions)[key];
    if (!known)
        known = new Target(function);
    return known;
}

const NativeFunction& targetOf(const JS::Value& callee) {
    return static_cast<const Target*>(FUNCTION_VALUE_TO_JITINFO(callee))->function;
}

CallArguments givenArguments(const JS::CallArgs& arguments) {
    CallArguments given;
    given.positional.reserve(arguments.length());
    for (unsigned index = 0; index < arguments.length(); ++index)
        given.positional.push_back(argumentOf(arguments[index]));
    return given;
}

/// Runs what gives a result for the script, under the name of the function.
template <typename Name, typename Call>
bool finish(const Name& name, const JS::CallArgs& arguments, Call call) {
    return guarded(name, [&] {
        const SharedPtr<ScriptArgument> result = checked(call());
        arguments.rval().set(result ? valueOf(result).get() : JS::UndefinedValue());
        return true;
    });
}

auto shownName(const NativeFunction& function) {
    return [&function] { return function.displayName(); };
}

/// With arguments of which some may be left out.
[[gnu::noinline]] bool callWithGaps(const NativeFunction& function, unsigned count,
                                    JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    return finish(shownName(function), arguments, [&] {
        return callNative(JavaScriptInterpreter::active(), function, {}, givenArguments(arguments));
    });
}

bool callFunction(JSContext*, unsigned count, JS::Value* values) {
    // The function itself stands in front, and what is its `this`.
    const JS::Value* const given = values + 2;
    const NativeFunction& function = targetOf(*values);
    JavaScriptInterpreter* const interpreter = JavaScriptInterpreter::active();
    const auto isNull = [given](int index) { return given[index].isNullOrUndefined(); };
    const auto all = static_cast<int>(count);
    if (!interpreter || !function.areInPlace(all, isNull)) [[unlikely]]
        return callWithGaps(function, count, values);
    // The road of most calls, without a list of arguments that is made for it.
    const auto valueAt = [given](int place) { return given[place]; };
    // The result takes the place of the function.
    const auto take = [values](const JS::Value& result) { *values = result; };
    return guarded(shownName(function), [&] {
        if (!callDirectly<JavaScriptContext>(*interpreter, function, all, valueAt, take))
            [[unlikely]]
            throwFailure(*interpreter->takeCallFailure());
        return true;
    });
}

bool callMethodOfClass(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const NativeFunction& function = targetOf(arguments.calleev());
    return finish(shownName(function), arguments, [&] {
        const auto object = arguments.thisv().isObject()
                                ? heldBy<NativeScriptObject>(&arguments.thisv().toObject())
                                : SharedPtr<NativeScriptObject>();
        if (!object)
            throwFailure(
                badArgument(function.displayName() + " needs an object of its class as 'this'"));
        return callNative(JavaScriptInterpreter::active(), function, object,
                          givenArguments(arguments));
    });
}

bool construct(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const NativeFunction& function = targetOf(arguments.calleev());
    const ObjectRoot type(arguments.isConstructing() ? &arguments.newTarget().toObject() : nullptr);
    const bool isOwn = type == &arguments.callee();
    const bool isMade = finish(shownName(function), arguments, [&] {
        if (!type)
            throwFailure(badArgument(function.displayName() + " is a class: call it with 'new'"));
        return callNative(JavaScriptInterpreter::active(), function, {}, givenArguments(arguments));
    });
    if (!isMade || isOwn || !arguments.rval().isObject())
        return isMade;
    // A class that the script derives from it.
    return guarded(shownName(function), [&] {
        const ObjectRoot prototype(propertyOf(type, "prototype"));
        checked(!prototype || JS_SetPrototype(context, ObjectRoot(arguments.rval()), prototype));
        return true;
    });
}

/// A member function of the library's takes its object as the first argument.
bool callMember(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const ValueRoot function(js::GetFunctionNativeReserved(&arguments.callee(), targetSlot));
    ValueRoots all;
    return all.append(arguments.thisv()) && all.append(arguments.array(), count) &&
           JS::Call(context, JS::UndefinedHandleValue, function, all, arguments.rval());
}

JSNative entryOf(NativeFunction::Kind kind) {
    return kind == NativeFunction::Kind::Method        ? callMethodOfClass
           : kind == NativeFunction::Kind::Constructor ? construct
                                                       : callFunction;
}

JSObject* makeFunctionObject(JSNative native, const QString& name, const JS::Value& target) {
    const ValueRoot kept(target);
    JSObject* const object = JS_GetFunctionObject(checked(
        js::NewFunctionWithReserved(engineContext(), native, 0, 0, name.toUtf8().constData())));
    js::SetFunctionNativeReserved(object, targetSlot, kept);
    return object;
}

// Functions of an application

bool callApplicationFunction(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const QString name = fromJsText(js::GetFunctionNativeReserved(&arguments.callee(), targetSlot));
    return finish([&] { return name; }, arguments,
                  [&] {
                      return callGlobal(JavaScriptInterpreter::active(), name,
                                        givenArguments(arguments));
                  });
}

bool callBoundMethod(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const SharedPtr<BoundMethod> method = heldBy<BoundMethod>(
        &js::GetFunctionNativeReserved(&arguments.callee(), targetSlot).toObject());
    return finish([&] { return method->displayName(); }, arguments,
                  [&] {
                      return callMethod(JavaScriptInterpreter::active(), method,
                                        givenArguments(arguments));
                  });
}

}  // namespace

JSObject* makeFunction(const NativeFunction& function) {
    const unsigned flags =
        function.kind() == NativeFunction::Kind::Constructor ? JSFUN_CONSTRUCTOR : 0;
    JSFunction* const made =
        checked(JS_NewFunction(engineContext(), entryOf(function.kind()),
                               static_cast<unsigned>(function.parameters().requiredCount), flags,
                               function.signature().name.toUtf8().constData()));
    SET_JITINFO(made, kept(function));
    return JS_GetFunctionObject(made);
}

bool isLibraryFunction(JSObject* object) {
    return JS_IsNativeFunction(object, callFunction);
}

JSObject* makeMemberFunction(const NativeFunction& function) {
    return makeFunctionObject(callMember, function.signature().name,
                              JS::ObjectValue(*makeFunction(function)));
}

JSObject* makeNativeClass(const QString& name, void* typeId, const NativeScriptType& type) {
    JSContext* const context = engineContext();
    JavaScriptInterpreter& interpreter = *JavaScriptInterpreter::active();
    const ScriptContext& library = interpreter.context();
    const ObjectRoot constructor(makeFunction(nativeConstructor(library, name, type)));
    NativeClasses<ObjectRoot>& prototypes = interpreter.realm().nativePrototypes();
    const ObjectRoot* const base = prototypes.find(type.super());
    const ObjectRoot prototype(base ? checked(JS_NewObjectWithGivenProto(context, nullptr, *base))
                                    : newObject());
    checked(JS_LinkConstructorAndPrototype(context, constructor, prototype));
    prototypes.add(typeId, type.super(), prototype);
    for (const NativeMember& member : nativeMembers(library, name, type)) {
        const JS::HandleObject owner = member.isStatic() ? constructor : prototype;
        const ObjectRoot function(makeFunction(member.function));
        const ObjectRoot setter(member.setter ? makeFunction(*member.setter) : nullptr);
        if (member.isProperty())
            checked(JS_DefinePropertyById(context, owner, IdRoot(toKey(member.name)), function,
                                          setter, JSPROP_ENUMERATE));
        else
            defineProperty(owner, member.name, JS::ObjectValue(*function),
                           member.isStatic() ? JSPROP_ENUMERATE : 0);
    }
    // A slip in the name of a property is no new property.
    checked(JS_FreezeObject(context, constructor));
    return constructor;
}

JSObject* makeApplicationFunction(const QString& name) {
    return makeFunctionObject(callApplicationFunction, name, toJsText(name));
}

JSObject* makeMethod(const SharedPtr<BoundMethod>& method) {
    return makeFunctionObject(
        callBoundMethod, method->displayName().section('.', -1),
        JS::ObjectValue(*makeHostObject(method, ObjectRoot(rootPrototype()))));
}

}  // namespace Tamrix::JavaScriptPlugin
