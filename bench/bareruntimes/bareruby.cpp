#include "bareruntime.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::Bench {

namespace {

VALUE nothing(VALUE) {
    return Qnil;
}

VALUE plus(VALUE, VALUE left, VALUE right) {
    if (!RB_INTEGER_TYPE_P(left) || !RB_INTEGER_TYPE_P(right))
        rb_raise(rb_eTypeError, "plus takes two integers");
    return LL2NUM(NUM2LL(left) + NUM2LL(right));
}

VALUE now(VALUE) {
    return LL2NUM(nanosecondsNow());
}

VALUE report(VALUE, VALUE what, VALUE nanoseconds) {
    keepReport(StringValueCStr(what), NUM2DBL(nanoseconds));
    return Qnil;
}

}  // namespace

void runBareRuby(const char* script, const std::function<void()>& onStarted) {
    static char s_name[] = "ruby";
    static char s_option[] = "-e";
    static char s_code[] = "";
    static char* s_arguments[] = {s_name, s_option, s_code, nullptr};
    int state = 0;
    if (ruby_setup() != 0 || ruby_executable_node(ruby_options(3, s_arguments), &state) == 0)
        giveUp("Ruby can't be started");
    onStarted();
    rb_define_global_function("nothing", nothing, 0);
    rb_define_global_function("plus", plus, 2);
    rb_define_global_function("now", now, 0);
    rb_define_global_function("report", report, 2);
    rb_eval_string_protect(script, &state);
    if (state == 0)
        rb_eval_string_protect("main", &state);
    if (state != 0)
        giveUp("The script has failed in Ruby");
}

}  // namespace Tamrix::Bench
