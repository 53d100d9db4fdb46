#include "plugins/ruby/rubyoutput.h"

#include "interpreter/language/scriptoutput.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyinterpreter.h"

namespace Tamrix::RubyPlugin {

namespace {

VALUE s_streams[2] = {Qnil, Qnil};

ScriptOutput::Stream streamOf(VALUE self) {
    return self == s_streams[ScriptOutput::Stdout] ? ScriptOutput::Stdout : ScriptOutput::Stderr;
}

VALUE write(int count, VALUE* texts, VALUE self) {
    return enterNative([=] {
        RubyInterpreter* const interpreter = RubyInterpreter::active();
        long bytes = 0;
        for (int index = 0; index < count; ++index) {
            const VALUE each = texts[index];
            const VALUE text = protect([=] { return rb_obj_as_string(each); });
            bytes += RSTRING_LEN(text);
            if (interpreter)
                interpreter->output().write(streamOf(self), fromRuby(text));
            else
                ScriptOutput::writeToProcess(streamOf(self), fromRuby(text));
        }
        return LONG2NUM(bytes);
    });
}

VALUE flush(VALUE self) {
    return enterNative([=] {
        if (RubyInterpreter* const interpreter = RubyInterpreter::active())
            interpreter->output().flush();
        return self;
    });
}

VALUE fileno(VALUE self) {
    return INT2FIX(streamOf(self) == ScriptOutput::Stdout ? 1 : 2);
}

VALUE putCharacter(VALUE self, VALUE character) {
    const VALUE text = RB_TYPE_P(character, T_STRING) ? rb_str_substr(character, 0, 1)
                                                      : rb_funcall(character, rb_intern("chr"), 0);
    rb_funcall(self, rb_intern("write"), 1, text);
    return character;
}

VALUE itself(int, VALUE*, VALUE self) {
    return self;
}

VALUE no(VALUE) {
    return Qfalse;
}

VALUE yes(VALUE) {
    return Qtrue;
}

VALUE setSync(VALUE, VALUE value) {
    return value;
}

VALUE encoding(VALUE) {
    return rb_enc_from_encoding(rb_utf8_encoding());
}

}  // namespace

void defineOutput(VALUE module) {
    const VALUE type = rb_define_class_under(module, "Output", rb_cObject);
    rb_define_method(type, "write", write, -1);
    rb_define_method(type, "syswrite", write, -1);
    rb_define_method(type, "write_nonblock", write, -1);
    rb_define_method(type, "puts", RUBY_METHOD_FUNC(rb_io_puts), -1);
    rb_define_method(type, "print", RUBY_METHOD_FUNC(rb_io_print), -1);
    rb_define_method(type, "printf", RUBY_METHOD_FUNC(rb_io_printf), -1);
    rb_define_method(type, "<<", RUBY_METHOD_FUNC(rb_io_addstr), 1);
    rb_define_method(type, "putc", putCharacter, 1);
    rb_define_method(type, "flush", flush, 0);
    rb_define_method(type, "fsync", flush, 0);
    rb_define_method(type, "fileno", fileno, 0);
    rb_define_method(type, "to_i", fileno, 0);
    for (const char* const name : {"binmode", "set_encoding"})
        rb_define_method(type, name, itself, -1);
    for (const char* const name : {"tty?", "isatty", "closed?"})
        rb_define_method(type, name, no, 0);
    rb_define_method(type, "sync", yes, 0);
    rb_define_method(type, "sync=", setSync, 1);
    rb_define_method(type, "external_encoding", encoding, 0);
    for (VALUE& stream : s_streams) {
        stream = rb_obj_alloc(type);
        rb_gc_register_address(&stream);
    }
}

void installOutput() {
    // Not rb_stdout itself: Ruby checks what it is given.
    protect([] { return rb_gv_set("$stdout", s_streams[ScriptOutput::Stdout]); });
    protect([] { return rb_gv_set("$stderr", s_streams[ScriptOutput::Stderr]); });
}

}  // namespace Tamrix::RubyPlugin
