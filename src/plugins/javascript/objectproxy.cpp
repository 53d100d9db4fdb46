#include "plugins/javascript/objectproxy.h"

#include <js/PropertySpec.h>
#include <jsfriendapi.h>

#include <algorithm>

#include "interpreter/language/objectcalls.h"
#include "interpreter/objects/objectidentity.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptargument.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/nativefunctions.h"
#include "plugins/javascript/objectproxyhandler.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Names that the language asks any value for, where none is no error.
constexpr const char* askedNames[] = {"then", "toJSON"};

using HeldObject = SharedPtr<Object>;

const HeldObject& objectOf(JSObject* proxy) {
    return *static_cast<const HeldObject*>(heldByObjectProxy(proxy));
}

bool isLanguagesOwn(JSContext* context, JS::HandleObject proxy, JS::HandleId name) {
    if (name.isSymbol())
        return true;
    JS::RootedObject prototype(context);
    bool isThere = false;
    checked(JS_GetPrototype(context, proxy, &prototype) &&
            JS_HasPropertyById(context, prototype, name, &isThere));
    return isThere;
}

/// The object as text; for templates and sums of texts, too.
JS::Value writeAsText(const JS::CallArgs& arguments) {
    return toJsText(textOf(arguments.thisv()));
}

constexpr NativeRow functions[] = {{"toString", native<writeAsText>}};

/// Runs `work` with the object and the member's name.
template <typename Work>
bool withMember(JSObject* proxy, JS::HandleId key, Work work) {
    const auto shownName = [&] { return objectOf(proxy)->className() + '.' + fromKey(key); };
    return guarded(shownName, [&] {
        work(objectOf(proxy), fromKey(key));
        return true;
    });
}

}  // namespace

JS::Value applicationObjectValue(const SharedPtr<Object>& object) {
    if (!object)
        return JS::NullValue();
    ScriptRealm* const realm = ScriptRealm::current();
    JS::RootedObject prototype(engineContext(),
                               realm ? realm->applicationObjectPrototype() : nullptr);
    auto held = std::make_unique<HeldObject>(object);
    JSObject* const proxy = checked(makeObjectProxy(engineContext(), held.get(), prototype));
    static_cast<void>(held.release());  // the proxy's now
    return JS::ObjectValue(*proxy);
}

SharedPtr<Object> applicationObjectOf(JSObject* object) {
    const auto* const held = static_cast<const HeldObject*>(heldByObjectProxy(object));
    return held ? *held : SharedPtr<Object>();
}

bool isApplicationObject(JSObject* object) {
    return heldByObjectProxy(object) != nullptr;
}

bool areSameApplicationObjects(JSObject* left, JSObject* right) {
    return isSameObject(objectOf(left), objectOf(right));
}

JSObject* makeApplicationObjectPrototype() {
    JSContext* const context = engineContext();
    JS::RootedObject prototype(context, checked(JS_NewPlainObject(context)));
    defineFunctions(prototype, functions);
    return prototype;
}

// What the handler does

bool readObjectProxy(JSContext* context, JS::HandleObject proxy, JS::HandleId key,
                     JS::MutableHandleValue value, bool* isOwn) {
    return withMember(proxy, key, [&](const HeldObject& object, const QString& name) {
        *isOwn = !isLanguagesOwn(context, proxy, key);
        if (!*isOwn)
            return;
        const tl::expected<Member, ScriptFailure> member =
            getMember(JavaScriptInterpreter::active(), object, name);
        const bool isAsked = std::any_of(std::begin(askedNames), std::end(askedNames),
                                         [&](const char* each) { return name == each; });
        if (!member && isAsked && member.error().kind == ScriptFailure::Kind::NoMember) {
            *isOwn = false;
            return;
        }
        checked(member);
        if (const auto* const own = std::get_if<SharedPtr<ScriptArgument>>(&*member))
            value.set(valueOf(*own));
        else
            value.setObject(*makeMethod(std::get<1>(*member)));
    });
}

bool writeObjectProxy(JSContext*, JS::HandleObject proxy, JS::HandleId key, JS::HandleValue value) {
    return withMember(proxy, key, [&](const HeldObject& object, const QString& name) {
        checked(setMember(JavaScriptInterpreter::active(), object, name, argumentOf(value)));
    });
}

bool deleteOfObjectProxy(JSContext*, JS::HandleObject proxy, JS::HandleId key) {
    return withMember(proxy, key, [&](const HeldObject& object, const QString& name) {
        checked(setMember(JavaScriptInterpreter::active(), object, name, {}));
    });
}

bool namesOfObjectProxy(JSContext* context, JS::HandleObject proxy,
                        JS::MutableHandleIdVector names) {
    const auto shownName = [&] { return objectOf(proxy)->className(); };
    return guarded(shownName, [&] {
        JS::RootedString text(context);
        JS::RootedId name(context);
        for (const QString& member :
             checked(listMembers(JavaScriptInterpreter::active(), objectOf(proxy)))) {
            text = toJsString(member);
            checked(JS_StringToId(context, text, &name) && names.append(name));
        }
        return true;
    });
}

void endObjectProxy(void* held) {
    delete static_cast<HeldObject*>(held);
}

}  // namespace Tamrix::JavaScriptPlugin
