#include "plugins/ruby/exceptions.h"

#include <algorithm>
#include <iterator>

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"

namespace Tamrix::RubyPlugin {

namespace {

/// In the order of ScriptFailure::Kind. They live for the process.
VALUE s_classes[ScriptFailure::kindCount];

}  // namespace

void defineExceptions(VALUE module) {
    const VALUE error = rb_define_class_under(module, "Error", rb_eStandardError);
    const VALUE classes[] = {error,
                             rb_define_class_under(module, "VerificationError", error),
                             rb_define_class_under(module, "FatalError", rb_eException),
                             rb_define_class_under(module, "LookupError", error),
                             rb_eNoMethodError,
                             rb_eArgError};
    std::copy(std::begin(classes), std::end(classes), s_classes);
    for (VALUE& each : s_classes)
        rb_gc_register_address(&each);
}

VALUE errorClass() {
    return ScriptFailure::of(ScriptFailure::Kind::General, s_classes);
}

VALUE fatalErrorClass() {
    return ScriptFailure::of(ScriptFailure::Kind::Fatal, s_classes);
}

VALUE exceptionOf(const ScriptFailure& failure) {
    const VALUE type = ScriptFailure::of(failure.kind, s_classes);
    const VALUE text = toRuby(failure.text);
    return protect([=] { return rb_exc_new_str(type, text); });
}

}  // namespace Tamrix::RubyPlugin
