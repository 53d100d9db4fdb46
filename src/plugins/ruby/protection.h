#pragma once

#include <QString>
#include <exception>
#include <type_traits>

#include "interpreter/language/scripterrorset.h"
#include "plugins/ruby/rubyapi.h"
#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

// Ruby leaves functions by longjmp(), which passes over destructors, and C++ exceptions can't pass
// Ruby's own frames. So the two meet only here: what C++ wants of Ruby it asks for with protect(),
// from where a jump goes on as ScriptErrorSet; what Ruby calls is a function around
// enterNative(), from where that exception goes on as the jump that it was.

/// Remembers why Ruby has left a protected call, and throws. `before` is what `$!` was in front of
/// it.
[[noreturn]] void throwJump(int state, VALUE before);
/// Raises an exception that is not raised yet.
[[noreturn]] void throwException(VALUE exception);
/// The same, of a class with a text.
[[noreturn]] void throwException(VALUE exceptionClass, const QString& text);

/// The exception that is pending; Qnil when Ruby left for something else, as `throw` or `break`.
VALUE pendingException();
/// Takes the pending exception, which then belongs to the caller.
VALUE takeException();
/// Whether what is pending is an error that a native function may report: not an exit, a skip,
/// Ctrl-C or a jump to somewhere else.
bool isOrdinaryError();
/// Keeps what is pending, whatever is raised and taken until the end of the scope.
class PendingKept {
public:
    PendingKept();
    ~PendingKept();
    PendingKept(const PendingKept&) = delete;
    PendingKept& operator=(const PendingKept&) = delete;

private:
    int m_state;
    RubyRef m_exception;
};
/// Goes on where the exception or jump leads. Nothing with a destructor may be alive.
[[noreturn]] void resumeJump();
/// Keeps an exception for later that can't be raised now, as one that comes while native code
/// waits.
void postponeJump();
inline bool s_hasPostponed = false;
void throwWhatIsPostponed();
/// Throws what was postponed, if there is something.
inline void throwPostponed() {
    if (s_hasPostponed) [[unlikely]]
        throwWhatIsPostponed();
}

/// Calls `work`, which gives a VALUE and may raise. Throws ScriptErrorSet when it does. Nothing in
/// it may have a destructor.
template <typename Work>
VALUE protect(Work work) {
    static_assert(std::is_trivially_destructible_v<Work>);
    int state = 0;
    const VALUE before = rb_errinfo();
    const VALUE result =
        rb_protect([](VALUE data) -> VALUE { return (*reinterpret_cast<Work*>(data))(); },
                   reinterpret_cast<VALUE>(&work), &state);
    if (state != 0)
        throwJump(state, before);
    return result;
}

/// Makes an exception of what C++ throws, to be raised.
void keepNativeException(const char* text);

/// The body of a function that Ruby calls: `work` gives its result and may throw.
template <typename Work>
VALUE enterNative(const Work& work) {
    static_assert(std::is_trivially_destructible_v<Work>);
    bool left = false;
    VALUE result = Qnil;
    try {
        result = work();
    } catch (const ScriptErrorSet&) {
        left = true;
    } catch (const std::exception& exception) {
        keepNativeException(exception.what());
        left = true;
    } catch (...) {
        keepNativeException("unknown exception");
        left = true;
    }
    if (left) [[unlikely]]
        resumeJump();
    return result;
}

/// Throws a TypeError for a value of another type, such as T_STRING.
inline void requireType(VALUE value, int type) {
    protect([=] {
        rb_check_type(value, type);
        return Qnil;
    });
}

/// Calls a method.
template <typename... Arguments>
VALUE callMethod(VALUE receiver, const char* name, Arguments... arguments) {
    const VALUE values[] = {arguments..., Qnil};
    return protect(
        [&] { return rb_funcallv(receiver, rb_intern(name), int(sizeof...(arguments)), values); });
}

}  // namespace Tamrix::RubyPlugin
