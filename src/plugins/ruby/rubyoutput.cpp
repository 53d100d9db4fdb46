#include "plugins/ruby/rubyoutput.h"

#include "interpreter/language/scriptoutput.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyinterpreter.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Writes a String to the stream with this descriptor, and gives the number of its bytes.
VALUE write(VALUE, VALUE descriptor, VALUE text) {
    return enterNative([=] {
        requireType(text, T_STRING);
        const auto stream = FIX2INT(descriptor) == 1 ? ScriptOutput::Stdout : ScriptOutput::Stderr;
        LanguageInterpreter::print(Interpreter::Ruby, stream, fromRuby(text));
        return LONG2NUM(RSTRING_LEN(text));
    });
}

VALUE flush(VALUE) {
    return enterNative([] {
        if (RubyInterpreter* const interpreter = RubyInterpreter::active())
            interpreter->output().flush();
        return Qnil;
    });
}

}  // namespace

void defineOutput(VALUE module, VALUE native) {
    rb_define_singleton_method(native, "write", write, 2);
    rb_define_singleton_method(native, "flush", flush, 0);
    const VALUE type = rb_define_class_under(module, "Output", rb_cObject);
    rb_define_method(type, "puts", RUBY_METHOD_FUNC(rb_io_puts), -1);
    rb_define_method(type, "print", RUBY_METHOD_FUNC(rb_io_print), -1);
    rb_define_method(type, "printf", RUBY_METHOD_FUNC(rb_io_printf), -1);
    rb_define_method(type, "<<", RUBY_METHOD_FUNC(rb_io_addstr), 1);
}

void installOutput() {
    const VALUE streams = protect([] { return rb_path2class("Tamrix::Output"); });
    // Not rb_stdout itself: Ruby checks what it is given.
    protect([=] {
        const VALUE both = rb_const_get(streams, rb_intern("STANDARD"));
        rb_gv_set("$stdout", rb_ary_entry(both, 0));
        return rb_gv_set("$stderr", rb_ary_entry(both, 1));
    });
}

}  // namespace Tamrix::RubyPlugin
