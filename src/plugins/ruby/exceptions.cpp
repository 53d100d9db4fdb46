#include "plugins/ruby/exceptions.h"

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"

namespace Tamrix::RubyPlugin {

namespace {

/// They live for the process, as constants that Ruby knows.
VALUE s_error = Qnil;
VALUE s_lookupError = Qnil;
VALUE s_verificationError = Qnil;
VALUE s_fatalError = Qnil;

VALUE classOf(ScriptFailure::Kind kind) {
    switch (kind) {
        case ScriptFailure::Kind::General:
            return s_error;
        case ScriptFailure::Kind::Verification:
            return s_verificationError;
        case ScriptFailure::Kind::Fatal:
            return s_fatalError;
        case ScriptFailure::Kind::Lookup:
            return s_lookupError;
        case ScriptFailure::Kind::NoMember:
            return rb_eNoMethodError;
        case ScriptFailure::Kind::BadArgument:
            break;
    }
    return rb_eArgError;
}

}  // namespace

void defineExceptions(VALUE module) {
    s_error = rb_define_class_under(module, "Error", rb_eStandardError);
    s_lookupError = rb_define_class_under(module, "LookupError", s_error);
    s_verificationError = rb_define_class_under(module, "VerificationError", s_error);
    s_fatalError = rb_define_class_under(module, "FatalError", rb_eException);
    for (VALUE* const each : {&s_error, &s_lookupError, &s_verificationError, &s_fatalError})
        rb_gc_register_address(each);
}

VALUE errorClass() {
    return s_error;
}

VALUE fatalErrorClass() {
    return s_fatalError;
}

VALUE exceptionOf(const ScriptFailure& failure) {
    const VALUE type = classOf(failure.kind);
    const VALUE text = toRuby(failure.text);
    return protect([=] { return rb_exc_new_str(type, text); });
}

}  // namespace Tamrix::RubyPlugin
