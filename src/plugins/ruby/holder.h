#pragma once

#include "base/shared.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Ruby objects that hold a shared object of C++: one of the library's values, or an application's
/// object. `Tag` tells classes apart that hold the same type.
///
/// Ruby frees objects when it collects garbage, in the middle of anything. What they hold goes when
/// the next call of a native function begins: see dropReleased().
template <typename T>
class Holder {
public:
    static VALUE wrap(const SharedPtr<T>& held, VALUE rubyClass) {
        auto* const holder = new SharedPtr<T>(held);
        return protect([=] { return rb_data_typed_object_wrap(rubyClass, holder, &s_type); });
    }
    static bool check(VALUE object) { return rb_typeddata_is_kind_of(object, &s_type) != 0; }
    /// Null when the object holds nothing of the kind.
    static SharedPtr<T> unwrap(VALUE object) {
        return check(object) ? *static_cast<SharedPtr<T>*>(RTYPEDDATA_DATA(object)) : nullptr;
    }

    static const rb_data_type_t s_type;
};

/// Keeps what a Ruby object has held until nobody is in the middle of anything.
void releaseLater(Shared* held);
inline bool s_hasReleased = false;
void dropAllReleased();
/// Drops what was kept. Objects of applications may write to them then.
inline void dropReleased() {
    if (s_hasReleased) [[unlikely]]
        dropAllReleased();
}

template <typename T>
void releaseHolder(void* data) {
    auto* const held = static_cast<SharedPtr<T>*>(data);
    releaseLater(held->get());
    delete held;
}

template <typename T>
const rb_data_type_t Holder<T>::s_type = {
    "Tamrix value", {nullptr, releaseHolder<T>, nullptr, nullptr, {nullptr}}, nullptr, nullptr, 0};

}  // namespace Tamrix::RubyPlugin
