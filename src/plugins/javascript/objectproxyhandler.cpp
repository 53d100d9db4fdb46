#include "plugins/javascript/objectproxyhandler.h"

#include <js/Object.h>
#include <js/Proxy.h>
#include <jsfriendapi.h>

#include <algorithm>

namespace Tamrix::JavaScriptPlugin {

namespace {

constexpr char proxyFamily = 0;

class ObjectProxyHandler final : public js::BaseProxyHandler {
public:
    constexpr ObjectProxyHandler() : BaseProxyHandler(&proxyFamily) {}

    // What is held ends on the script thread.
    bool finalizeInBackground(const JS::Value&) const override { return false; }
    void finalize(JS::GCContext*, JSObject* proxy) const override {
        if (void* const held = heldByObjectProxy(proxy))
            endObjectProxy(held);
    }

    bool get(JSContext* context, JS::HandleObject proxy, JS::HandleValue, JS::HandleId name,
             JS::MutableHandleValue value) const override {
        bool isOwn = false;
        if (!readObjectProxy(context, proxy, name, value, &isOwn))
            return false;
        if (isOwn)
            return true;
        JS::RootedObject prototype(context);
        return JS_GetPrototype(context, proxy, &prototype) &&
               JS_GetPropertyById(context, prototype, name, value);
    }

    bool set(JSContext* context, JS::HandleObject proxy, JS::HandleId name, JS::HandleValue value,
             JS::HandleValue, JS::ObjectOpResult& result) const override {
        return writeObjectProxy(context, proxy, name, value) && result.succeed();
    }

    bool defineProperty(JSContext* context, JS::HandleObject proxy, JS::HandleId name,
                        JS::Handle<JS::PropertyDescriptor> descriptor,
                        JS::ObjectOpResult& result) const override {
        JS::RootedValue value(context);
        if (descriptor.hasValue())
            value = descriptor.value();
        return writeObjectProxy(context, proxy, name, value) && result.succeed();
    }

    bool delete_(JSContext* context, JS::HandleObject proxy, JS::HandleId name,
                 JS::ObjectOpResult&) const override {
        return deleteOfObjectProxy(context, proxy, name);
    }

    bool has(JSContext* context, JS::HandleObject proxy, JS::HandleId name,
             bool* isThere) const override {
        return hasOwn(context, proxy, name, isThere);
    }

    bool hasOwn(JSContext* context, JS::HandleObject proxy, JS::HandleId name,
                bool* isThere) const override {
        JS::RootedIdVector names(context);
        if (!ownPropertyKeys(context, proxy, &names))
            return false;
        *isThere = std::find(names.begin(), names.end(), name.get()) != names.end();
        return true;
    }

    bool ownPropertyKeys(JSContext* context, JS::HandleObject proxy,
                         JS::MutableHandleIdVector names) const override {
        return namesOfObjectProxy(context, proxy, names);
    }

    bool getOwnPropertyDescriptor(
        JSContext* context, JS::HandleObject proxy, JS::HandleId name,
        JS::MutableHandle<mozilla::Maybe<JS::PropertyDescriptor>> descriptor) const override {
        bool isThere = false;
        JS::RootedValue value(context);
        if (!hasOwn(context, proxy, name, &isThere) ||
            (isThere && !readObjectProxy(context, proxy, name, &value, &isThere)))
            return false;
        if (isThere)
            descriptor.set(mozilla::Some(JS::PropertyDescriptor::Data(
                value, {JS::PropertyAttribute::Configurable, JS::PropertyAttribute::Enumerable,
                        JS::PropertyAttribute::Writable})));
        else
            descriptor.reset();
        return true;
    }

    bool getPrototypeIfOrdinary(JSContext* context, JS::HandleObject proxy, bool* isOrdinary,
                                JS::MutableHandleObject prototype) const override {
        *isOrdinary = true;
        return JS_GetPrototype(context, proxy, prototype);
    }

    bool preventExtensions(JSContext*, JS::HandleObject,
                           JS::ObjectOpResult& result) const override {
        return result.failCantPreventExtensions();
    }

    bool isExtensible(JSContext*, JS::HandleObject, bool* isExtensible) const override {
        *isExtensible = true;
        return true;
    }

    const char* className(JSContext*, JS::HandleObject) const override { return "Object"; }
};

constexpr ObjectProxyHandler handler;

}  // namespace

JSObject* makeObjectProxy(JSContext* context, void* held, JS::HandleObject prototype) {
    JS::RootedValue value(context, JS::PrivateValue(held));
    return js::NewProxyObject(context, &handler, value, prototype);
}

void* heldByObjectProxy(JSObject* object) {
    if (!js::IsProxy(object) || js::GetProxyHandler(object)->family() != &proxyFamily)
        return nullptr;
    return js::GetProxyPrivate(object).toPrivate();
}

}  // namespace Tamrix::JavaScriptPlugin
