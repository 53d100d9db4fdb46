#include "plugins/javascript/nativefunctions.h"

#include <js/CallAndConstruct.h>
#include <js/Object.h>
#include <js/PropertyAndElement.h>
#include <jsfriendapi.h>

#include <QHash>
#include <algorithm>

#include "interpreter/language/objectcalls.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/javascriptcontext.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Where a function of the script keeps what it calls.
constexpr std::size_t targetSlot = 0;

// Native functions

/// All that scripts know, by what makes them different. They live for the process, as a function of
/// the script may outlive its case.
const NativeFunction* kept(const NativeFunction& function) {
    static auto* const s_functions = new QHash<QString, const NativeFunction*>;
    const QString key =
        QStringLiteral("%1/%2/%3")
            .arg(function.displayName(), QString::number(static_cast<int>(function.kind())),
                 QString::number(reinterpret_cast<quintptr>(function.address())));
    const NativeFunction*& known = (*s_functions)[key];
    if (!known)
        known = new NativeFunction(function);
    return known;
}

const NativeFunction& targetOf(const JS::CallArgs& arguments) {
    return *static_cast<const NativeFunction*>(
        js::GetFunctionNativeReserved(&arguments.callee(), targetSlot).toPrivate());
}

CallArguments givenArguments(const JS::CallArgs& arguments) {
    CallArguments given;
    given.positional.reserve(arguments.length());
    for (unsigned index = 0; index < arguments.length(); ++index)
        given.positional.push_back(argumentOf(arguments[index]));
    return given;
}

/// Whether each argument stands at its place, none is left out and none is missing.
bool arePlain(const Parameters& parameters, const JS::CallArgs& arguments) {
    const auto count = static_cast<int>(arguments.length());
    if (count < parameters.requiredCount)
        return false;
    const int end = std::min(count, static_cast<int>(parameters.names.size()));
    for (int index = parameters.requiredCount; index < end; ++index) {
        if (arguments[static_cast<unsigned>(index)].isNullOrUndefined())
            return false;
    }
    return true;
}

bool finish(const ScriptResult& result, const JS::CallArgs& arguments) {
    if (!result) {
        raise(result.error());
        return false;
    }
    arguments.rval().set(*result ? valueOf(*result).get() : JS::UndefinedValue());
    return true;
}

/// The road of most calls, without a list of arguments that is made for it.
ScriptResult callPlainly(JavaScriptInterpreter& interpreter, const NativeFunction& function,
                         const JS::CallArgs& arguments) {
    interpreter.output().flush();
    JavaScriptContext& context = interpreter.javaScriptContext();
    JavaScriptContext::PlainCall call(context, arguments);
    function.run(context, {});
    interpreter.noticeApplication();
    if (context.hasError())
        return tl::unexpected<ScriptFailure>(failureOf(context));
    return call.takeResult();
}

bool callFunction(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const NativeFunction& function = targetOf(arguments);
    return guarded([&] { return function.displayName(); },
                   [&] {
                       JavaScriptInterpreter* const interpreter = JavaScriptInterpreter::active();
                       if (interpreter && arePlain(function.parameters(), arguments))
                           return finish(callPlainly(*interpreter, function, arguments), arguments);
                       return finish(
                           callNative(interpreter, function, {}, givenArguments(arguments)),
                           arguments);
                   });
}

/// The native object that a method or an accessor is called on.
SharedPtr<NativeScriptObject> thisNative(const JS::CallArgs& arguments) {
    const auto* const native =
        arguments.thisv().isObject()
            ? heldBy<SharedPtr<NativeScriptObject>>(&arguments.thisv().toObject())
            : nullptr;
    return native ? *native : SharedPtr<NativeScriptObject>();
}

bool callMethodOfClass(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const NativeFunction& function = targetOf(arguments);
    return guarded([&] { return function.displayName(); },
                   [&] {
                       const SharedPtr<NativeScriptObject> object = thisNative(arguments);
                       if (!object) {
                           raiseBuiltIn("TypeError", function.displayName() +
                                                         " needs an object of its class as 'this'");
                           return false;
                       }
                       return finish(callNative(JavaScriptInterpreter::active(), function, object,
                                                givenArguments(arguments)),
                                     arguments);
                   });
}

bool construct(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const NativeFunction& function = targetOf(arguments);
    return guarded([&] { return function.displayName(); },
                   [&] {
                       if (!arguments.isConstructing()) {
                           raiseBuiltIn("TypeError",
                                        function.displayName() + " is a class: call it with 'new'");
                           return false;
                       }
                       JS::RootedObject type(context, &arguments.newTarget().toObject());
                       if (!finish(callNative(JavaScriptInterpreter::active(), function, {},
                                              givenArguments(arguments)),
                                   arguments))
                           return false;
                       // A class that the script derives from it.
                       JS::RootedValue prototype(context, propertyOf(type, "prototype"));
                       if (type == &arguments.callee() || !prototype.isObject() ||
                           !arguments.rval().isObject())
                           return true;
                       JS::RootedObject made(context, &arguments.rval().toObject());
                       JS::RootedObject wanted(context, &prototype.toObject());
                       return JS_SetPrototype(context, made, wanted);
                   });
}

JSNative entryOf(NativeFunction::Kind kind) {
    switch (kind) {
        case NativeFunction::Kind::Method:
            return callMethodOfClass;
        case NativeFunction::Kind::Constructor:
            return construct;
        default:
            return callFunction;
    }
}

JSObject* makeFunctionObject(JSNative native, const QString& name, int parameterCount,
                             const JS::Value& target, unsigned flags = 0) {
    JSContext* const context = engineContext();
    JS::RootedValue kept(context, target);
    JSFunction* const function = checked(js::NewFunctionWithReserved(
        context, native, static_cast<unsigned>(parameterCount), flags, name.toUtf8().constData()));
    JSObject* const object = JS_GetFunctionObject(function);
    js::SetFunctionNativeReserved(object, targetSlot, kept);
    return object;
}

void defineAccessor(JS::HandleObject object, const QString& name, JS::HandleObject getter,
                    JS::HandleObject setter) {
    checked(JS_DefineUCProperty(
        engineContext(), object, reinterpret_cast<const char16_t*>(name.utf16()),
        static_cast<std::size_t>(name.size()), getter, setter, JSPROP_ENUMERATE));
}

// Functions of an application

bool callApplicationFunction(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    JS::RootedValue target(engineContext(),
                           js::GetFunctionNativeReserved(&arguments.callee(), targetSlot));
    return guarded([&] { return fromJsString(target.toString()); },
                   [&] {
                       return finish(
                           callGlobal(JavaScriptInterpreter::active(),
                                      fromJsString(target.toString()), givenArguments(arguments)),
                           arguments);
                   });
}

bool callBoundMethod(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const SharedPtr<BoundMethod> method = *heldBy<SharedPtr<BoundMethod>>(
        &js::GetFunctionNativeReserved(&arguments.callee(), targetSlot).toObject());
    return guarded([&] { return method->displayName(); },
                   [&] {
                       return finish(callMethod(JavaScriptInterpreter::active(), method,
                                                givenArguments(arguments)),
                                     arguments);
                   });
}

}  // namespace

JSObject* makeFunction(const NativeFunction& function) {
    const unsigned flags =
        function.kind() == NativeFunction::Kind::Constructor ? JSFUN_CONSTRUCTOR : 0;
    return makeFunctionObject(entryOf(function.kind()), function.signature().name,
                              function.parameters().requiredCount,
                              JS::PrivateValue(const_cast<NativeFunction*>(kept(function))), flags);
}

bool isLibraryFunction(JSObject* object) {
    return JS_IsNativeFunction(object, callFunction);
}

JSObject* makeNativeClass(const QString& name, void* typeId, const NativeScriptType& type) {
    JSContext* const context = engineContext();
    JavaScriptInterpreter& interpreter = *JavaScriptInterpreter::active();
    const ScriptContext& library = interpreter.context();
    JS::RootedObject constructor(
        context, makeFunction(NativeFunction(library, {name, {}, {}, {}, {}}, type.constructor())));
    JS::RootedObject base(context, interpreter.realm().nativePrototype(type.super()));
    JS::RootedObject prototype(context,
                               checked(base ? JS_NewObjectWithGivenProto(context, nullptr, base)
                                            : JS_NewPlainObject(context)));
    checked(JS_LinkConstructorAndPrototype(context, constructor, prototype));
    interpreter.realm().setNativePrototype(typeId, prototype);

    const auto functionValue = [&](const NativeFunction& function) {
        return JS::ObjectValue(*makeFunction(function));
    };
    const auto methods = type.methods();
    for (auto it = methods.cbegin(); it != methods.cend(); ++it)
        defineProperty(prototype, it.key(),
                       functionValue({library,
                                      {it.key(), name, it->requiredParameters,
                                       it->optionalParameters, it->description},
                                      it->function}),
                       0);
    const auto staticMethods = type.staticMethods();
    for (auto it = staticMethods.cbegin(); it != staticMethods.cend(); ++it)
        defineProperty(constructor, it.key(),
                       functionValue({library,
                                      {it.key(), name, it->requiredParameters,
                                       it->optionalParameters, it->description},
                                      it->function}));
    const NativeSignature accessor{name, {}, {}, {}, {}};
    const auto properties = type.properties();
    JS::RootedObject getter(context);
    JS::RootedObject setter(context);
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const NativeSignature signature{it.key(), name, {}, {}, {}};
        getter = makeFunction({library, signature, it->getter});
        setter = it->setter ? makeFunction({library, signature, it->setter}) : nullptr;
        defineAccessor(prototype, it.key(), getter, setter);
    }
    const auto staticProperties = type.staticProperties();
    constexpr auto kind = NativeFunction::Kind::StaticAccessor;
    for (auto it = staticProperties.cbegin(); it != staticProperties.cend(); ++it) {
        const NativeSignature signature{it.key(), name, {}, {}, {}};
        getter = makeFunction({library, signature, it->getter, kind});
        setter = it->setter ? makeFunction({library, signature, it->setter, kind}) : nullptr;
        defineAccessor(constructor, it.key(), getter, setter);
    }
    // A slip in the name of a property is no new property.
    checked(JS_FreezeObject(context, constructor));
    return constructor;
}

JSObject* makeApplicationFunction(const QString& name) {
    JS::RootedValue text(engineContext(), toJsText(name));
    return makeFunctionObject(callApplicationFunction, name, 0, text);
}

JSObject* makeMethod(const SharedPtr<BoundMethod>& method) {
    JSContext* const context = engineContext();
    JS::RootedObject root(context, checked(JS::GetRealmObjectPrototype(context)));
    JS::RootedObject held(context, makeHostObject(method, root));
    return makeFunctionObject(callBoundMethod, method->displayName().section('.', -1), 0,
                              JS::ObjectValue(*held));
}

}  // namespace Tamrix::JavaScriptPlugin
