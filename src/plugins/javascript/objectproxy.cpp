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

QString displayName(JSObject* proxy, JS::HandleId name) {
    return objectOf(proxy)->className() + '.' + fromKey(name);
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
bool writeAsText(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    return guarded([] { return QStringLiteral("toString"); },
                   [&] {
                       arguments.rval().set(toJsText(textOf(arguments.thisv())));
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
    checked(JS_DefineFunction(context, prototype, "toString", writeAsText, 0, 0));
    return prototype;
}

// What the handler does

bool readObjectProxy(JSContext* context, JS::HandleObject proxy, JS::HandleId name,
                     JS::MutableHandleValue value, bool* isOwn) {
    return guarded([&] { return displayName(proxy, name); },
                   [&] {
                       *isOwn = !isLanguagesOwn(context, proxy, name);
                       if (!*isOwn)
                           return true;
                       const QString text = fromKey(name);
                       const tl::expected<Member, ScriptFailure> member =
                           getMember(JavaScriptInterpreter::active(), objectOf(proxy), text);
                       if (!member) {
                           const bool isAsked =
                               std::any_of(std::begin(askedNames), std::end(askedNames),
                                           [&](const char* each) { return text == each; });
                           if (isAsked && member.error().kind == ScriptFailure::Kind::NoMember) {
                               *isOwn = false;
                               return true;
                           }
                           raise(member.error());
                           return false;
                       }
                       if (const auto* const own = std::get_if<SharedPtr<ScriptArgument>>(&*member))
                           value.set(valueOf(*own));
                       else
                           value.setObject(*makeMethod(std::get<1>(*member)));
                       return true;
                   });
}

bool writeObjectProxy(JSContext*, JS::HandleObject proxy, JS::HandleId name,
                      JS::HandleValue value) {
    return guarded([&] { return displayName(proxy, name); },
                   [&] {
                       const tl::expected<void, ScriptFailure> written =
                           setMember(JavaScriptInterpreter::active(), objectOf(proxy),
                                     fromKey(name), argumentOf(value));
                       if (!written)
                           raise(written.error());
                       return bool(written);
                   });
}

bool deleteOfObjectProxy(JSContext*, JS::HandleObject proxy, JS::HandleId name) {
    return guarded([&] { return displayName(proxy, name); },
                   [&] {
                       const tl::expected<void, ScriptFailure> deleted = setMember(
                           JavaScriptInterpreter::active(), objectOf(proxy), fromKey(name), {});
                       if (!deleted)
                           raise(deleted.error());
                       return bool(deleted);
                   });
}

bool namesOfObjectProxy(JSContext* context, JS::HandleObject proxy,
                        JS::MutableHandleIdVector names) {
    return guarded([&] { return objectOf(proxy)->className(); },
                   [&] {
                       const tl::expected<QStringList, ScriptFailure> members =
                           listMembers(JavaScriptInterpreter::active(), objectOf(proxy));
                       if (!members) {
                           raise(members.error());
                           return false;
                       }
                       JS::RootedString text(context);
                       JS::RootedId name(context);
                       for (const QString& member : *members) {
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
