#include "plugins/javascript/objectproxy.h"

#include "interpreter/language/objectcalls.h"

#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/nativefunctions.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

// The traps of the handler. Each has the object that holds the application's as first argument, and
// most have a key behind it.

struct Access {
    SharedPtr<Object> object;
    IdRoot key;
    /// Its text; null without one.
    QString name;
};

/// As the engine calls it.
template <auto work>
bool trap(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    Access access{heldBy<Object>(&arguments[0].toObject()), IdRoot(), {}};
    const auto shownName = [&] {
        return access.object->className() + (count > 1 ? '.' + access.name : QString());
    };
    return guarded(shownName, [&] {
        if (count > 1) {
            checked(JS_ValueToId(context, arguments[1], &access.key));
            access.name = fromKey(access.key);
        }
        arguments.rval().set(work(access, arguments));
        return true;
    });
}

bool isListed(const Access& access) {
    return checked(listMembers(JavaScriptInterpreter::active(), access.object))
        .contains(access.name);
}

JS::Value readMember(const Access& access, const JS::CallArgs& arguments) {
    const ObjectRoot prototype(prototypeOf(&arguments[0].toObject()));
    if (arguments[1].isSymbol() || hasProperty(prototype, access.key))
        return propertyOf(prototype, access.key);
    const tl::expected<Member, ScriptFailure> member =
        getMember(JavaScriptInterpreter::active(), access.object, access.name);
    // The language asks any value for these: none is no error.
    const bool isAsked =
        access.name == QLatin1String("then") || access.name == QLatin1String("toJSON");
    if (!member && isAsked && member.error().kind == ScriptFailure::Kind::NoMember)
        return JS::UndefinedValue();
    checked(member);
    const auto* const own = std::get_if<SharedPtr<ScriptArgument>>(&*member);
    return own ? valueOf(*own).get() : JS::ObjectValue(*makeMethod(std::get<1>(*member)));
}

void write(const Access& access, const SharedPtr<ScriptArgument>& value) {
    checked(setMember(JavaScriptInterpreter::active(), access.object, access.name, value));
}

JS::Value writeMember(const Access& access, const JS::CallArgs& arguments) {
    write(access, argumentOf(arguments[2]));
    return JS::TrueValue();
}

JS::Value defineMember(const Access& access, const JS::CallArgs& arguments) {
    write(access, argumentOf(propertyOf(&arguments[2].toObject(), "value")));
    return JS::TrueValue();
}

/// Always refuses.
JS::Value deleteMember(const Access& access, const JS::CallArgs&) {
    write(access, {});
    return JS::FalseValue();
}

JS::Value hasMember(const Access& access, const JS::CallArgs&) {
    return JS::BooleanValue(isListed(access));
}

JS::Value describeMember(const Access& access, const JS::CallArgs& arguments) {
    if (!isListed(access))
        return JS::UndefinedValue();
    const ValueRoot value(readMember(access, arguments));
    const ObjectRoot descriptor(newObject());
    defineProperty(descriptor, QStringLiteral("value"), value);
    for (const char* const each : {"writable", "enumerable", "configurable"})
        defineProperty(descriptor, QString::fromLatin1(each), JS::TrueValue());
    return JS::ObjectValue(*descriptor);
}

JS::Value listNames(const Access& access, const JS::CallArgs&) {
    QStringList members = checked(listMembers(JavaScriptInterpreter::active(), access.object));
    members.removeDuplicates();
    return newArray(members);
}

JS::Value refuse(const Access&, const JS::CallArgs&) {
    return JS::FalseValue();
}

constexpr JSFunctionSpec traps[] = {
    JS_FN("get", trap<readMember>, 2, 0),
    JS_FN("set", trap<writeMember>, 2, 0),
    JS_FN("defineProperty", trap<defineMember>, 2, 0),
    JS_FN("deleteProperty", trap<deleteMember>, 2, 0),
    JS_FN("has", trap<hasMember>, 2, 0),
    JS_FN("getOwnPropertyDescriptor", trap<describeMember>, 2, 0),
    JS_FN("ownKeys", trap<listNames>, 2, 0),
    JS_FN("preventExtensions", trap<refuse>, 1, 0),
    JS_FS_END,
};

/// The object as text; for templates and sums of texts, too.
JS::Value writeAsText(const JS::CallArgs& arguments) {
    return toJsText(textOf(arguments.thisv()));
}

constexpr JSFunctionSpec functions[] = {JS_FN("toString", native<writeAsText>, 0, 0), JS_FS_END};

}  // namespace

JS::Value applicationObjectValue(const SharedPtr<Object>& object) {
    ScriptRealm* const realm = ScriptRealm::current();
    if (!object || !realm)
        return JS::NullValue();
    ValueRoots arguments;
    arguments.add(JS::ObjectValue(*makeHostObject(object, realm->applicationObjectPrototype())))
        .add(JS::ObjectValue(*realm->applicationObjectHandler()));
    return JS::ObjectValue(*newInstance(realm->proxyClass(), arguments));
}

SharedPtr<Object> applicationObjectOf(JSObject* object) {
    // No script comes to what holds the object, so that no proxy of a script stands for it.
    JSObject* const target = js::IsProxy(object) && js::GetProxyPrivate(object).isObject()
                                 ? &js::GetProxyPrivate(object).toObject()
                                 : nullptr;
    return target ? heldBy<Object>(target) : SharedPtr<Object>();
}

JSObject* makeApplicationObjectPrototype() {
    return newObject(functions);
}

JSObject* makeApplicationObjectHandler() {
    const ObjectRoot handler(
        checked(JS_NewObjectWithGivenProto(engineContext(), nullptr, nullptr)));
    checked(JS_DefineFunctions(engineContext(), handler, traps));
    return handler;
}

}  // namespace Tamrix::JavaScriptPlugin
