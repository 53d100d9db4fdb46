#pragma once

#include <type_traits>

#include "interpreter/language/scripterrorset.h"
#include "plugins/javascript/engine.h"
#include "plugins/javascript/engineapi.h"

namespace Tamrix::JavaScriptPlugin {

/// Throws ScriptErrorSet unless the engine did what it was asked.
inline void checked(bool isDone) {
    if (!isDone)
        throw ScriptErrorSet();
}
template <typename T>
T* checked(T* made) {
    checked(made != nullptr);
    return made;
}

// Roots of the engine's one context. Collections move objects, so that whatever lives across a call
// of the engine is in one. Unlike the engine's own roots on the stack they may end in any order, as
// those of an expression do of which another one is made.

template <typename T>
class Root : public JS::PersistentRooted<T> {
public:
    Root() : JS::PersistentRooted<T>(engineContext()) {}
    explicit Root(const T& initial) : JS::PersistentRooted<T>(engineContext(), initial) {}
    using JS::PersistentRooted<T>::operator=;
};

using ValueRoot = Root<JS::Value>;
using IdRoot = Root<jsid>;

class ObjectRoot : public Root<JSObject*> {
public:
    ObjectRoot() = default;
    explicit ObjectRoot(JSObject* object) : Root(object) {}
    /// Null for a value that is no object.
    explicit ObjectRoot(const JS::Value& value)
        : Root(value.isObject() ? &value.toObject() : nullptr) {}
    using Root::operator=;
};

class ValueRoots : public JS::PersistentRootedVector<JS::Value> {
public:
    ValueRoots() : JS::PersistentRootedVector<JS::Value>(engineContext()) {}
    ValueRoots& add(const JS::Value& value) {
        checked(append(value));
        return *this;
    }
    operator JS::HandleValueArray() const {
        return JS::HandleValueArray::fromMarkedLocation(length(), begin());
    }
};

/// What a function of the engine leaves in its last argument. Throws ScriptErrorSet when it fails.
template <typename T, typename Function, typename... Arguments>
T given(Function function, const Arguments&... arguments) {
    constexpr bool isPlain = std::is_arithmetic_v<T> || std::is_enum_v<T>;
    std::conditional_t<isPlain, T, Root<T>> result{};
    checked(function(engineContext(), arguments..., &result));
    return result;
}

}  // namespace Tamrix::JavaScriptPlugin
