#include "plugins/ruby/protection.h"

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/exceptions.h"

namespace Tamrix::RubyPlugin {

namespace {

/// How Ruby names a jump for an exception.
constexpr int raised = 6;
/// An exception that is still to be raised.
constexpr int toBeRaised = -1;

/// Why the last protected call was left.
struct Jump {
    int state = 0;
    RubyRef exception;
};

Jump& pending() {
    static auto* const s_jump = new Jump;
    return *s_jump;
}

Jump& postponed() {
    static auto* const s_jump = new Jump;
    return *s_jump;
}

}  // namespace

void throwJump(int state, VALUE before) {
    pending().state = state;
    pending().exception.reset();
    if (state == raised) {
        pending().exception = rb_errinfo();
        rb_set_errinfo(rb_obj_is_kind_of(before, rb_eException) == Qtrue ? before : Qnil);
    }
    throw ScriptErrorSet();
}

void throwException(VALUE exception) {
    pending().state = toBeRaised;
    pending().exception = exception;
    throw ScriptErrorSet();
}

void throwException(VALUE exceptionClass, const QString& text) {
    const VALUE words = toRuby(text);
    throwException(protect([&] { return rb_exc_new_str(exceptionClass, words); }));
}

VALUE pendingException() {
    return pending().exception ? pending().exception.get() : Qnil;
}

VALUE takeException() {
    const VALUE exception = pendingException();
    pending().exception.reset();
    return exception;
}

bool isOrdinaryError() {
    const VALUE exception = pendingException();
    if (NIL_P(exception))
        return false;
    for (const VALUE type : {rb_eSystemExit, rb_eSignal, fatalErrorClass()}) {
        if (rb_obj_is_kind_of(exception, type) == Qtrue)
            return false;
    }
    return true;
}

PendingKept::PendingKept() : m_state(pending().state), m_exception(pending().exception) {}

PendingKept::~PendingKept() {
    pending().state = m_state;
    pending().exception = m_exception;
}

void resumeJump() {
    const int state = pending().state;
    const VALUE exception = takeException();
    if (state == toBeRaised)
        rb_exc_raise(exception);
    if (!NIL_P(exception))
        rb_set_errinfo(exception);
    rb_jump_tag(state);
}

void postponeJump() {
    postponed().state = pending().state;
    postponed().exception = pending().exception;
    s_hasPostponed = true;
}

void throwWhatIsPostponed() {
    s_hasPostponed = false;
    pending().state = postponed().state;
    pending().exception = postponed().exception;
    postponed().exception.reset();
    throw ScriptErrorSet();
}

void keepNativeException(const char* text) {
    try {
        throwException(errorClass(), QString::fromUtf8(text));
    } catch (const ScriptErrorSet&) {
        // It is pending now.
    }
}

}  // namespace Tamrix::RubyPlugin
