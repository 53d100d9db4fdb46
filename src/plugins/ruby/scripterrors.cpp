#include "plugins/ruby/scripterrors.h"

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubysteps.h"

namespace Tamrix::RubyPlugin {

namespace {

/// What a method of an exception gives; nil when it fails in its turn.
VALUE asked(VALUE exception, const char* name) {
    try {
        return callMethod(exception, name);
    } catch (const ScriptErrorSet&) {
        takeException();
    }
    return Qnil;
}

QString ownText(VALUE exception) {
    const QString name = classNameOf(exception);
    QString words = fromRuby(asked(exception, "message"));
    // Ruby tells the place in front, and results tell it beside.
    if (rb_obj_is_kind_of(exception, rb_eSyntaxError) == Qtrue)
        words.remove(0, words.indexOf(": ") + 2);
    return words.isEmpty() || words == name ? name : name + ": " + words;
}

bool isCleanExit(VALUE exception) {
    return rb_obj_is_kind_of(exception, rb_eSystemExit) == Qtrue &&
           RTEST(asked(exception, "success?"));
}

}  // namespace

VALUE namedAsHash(const NamedArguments& named) {
    const auto symbol = [](const QString& name) { return rb_str_intern(toRuby(name)); };
    return hashOf(named, symbol, rubyValue);
}

QString exceptionText(VALUE exception) {
    return textWithCauses(exception, ownText, [](VALUE each) {
        const VALUE cause = asked(each, "cause");
        return NIL_P(cause) ? std::nullopt : std::optional(cause);
    });
}

ScriptError takeScriptError() {
    const VALUE exception = takeException();
    ScriptError error;
    if (NIL_P(exception)) {
        error.message =
            QStringLiteral("The script has left its code for a place that is not there");
        return error;
    }
    error.isExit = isCleanExit(exception);
    error.isPendingStep = isPendingStep(exception);
    error.message = exceptionText(exception);
    error.callStack = scriptLinesOf(exception);
    error.outermostLine = outermostLineOf(exception);
    if (RubyInterpreter* const interpreter = RubyInterpreter::active())
        interpreter->failures().complete(exception, &error);
    return error;
}

VALUE callCallable(VALUE function, const CallArguments& arguments) {
    const VALUE values = arrayOf(arguments.positional, rubyValue);
    const bool isNamed = !arguments.named.empty();
    if (isNamed) {
        const VALUE named = namedAsHash(arguments.named);
        protect([=] { return rb_ary_push(values, named); });
    }
    return protect([=] {
        return rb_funcallv_kw(function, rb_intern("call"), static_cast<int>(RARRAY_LEN(values)),
                              RARRAY_CONST_PTR(values),
                              isNamed ? RB_PASS_KEYWORDS : RB_NO_KEYWORDS);
    });
}

}  // namespace Tamrix::RubyPlugin
