#include "plugins/ruby/stepfunctions.h"

#include <string>
#include <vector>

#include "interpreter/language/stepactions.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/nativefunctions.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Runs `work` with the steps of the interpreter whose scripts run, on their thread, on behalf of a
/// function. What the library refuses becomes an ArgumentError.
template <typename Work>
VALUE withSteps(VALUE function, Work work) {
    return enterNative([=] {
        RubyInterpreter* const interpreter = RubyInterpreter::active();
        if (!interpreter || !interpreter->isScriptThread())
            raiseFailure(refusedCall(fromRuby(function), interpreter != nullptr));
        try {
            return work(interpreter->steps());
        } catch (const Gherkin::ExpressionError& error) {
            throwException(rb_eArgError, QString::fromUtf8(error.what()));
        }
    });
}

VALUE addStep(VALUE, VALUE function, VALUE text, VALUE isRegular, VALUE block) {
    return withSteps(function, [=](StepActions& steps) {
        steps.addStep(utf8OfRuby(text), RTEST(isRegular), new RubyArgument(block),
                      definitionOf(block));
        return Qnil;
    });
}

VALUE addHook(VALUE, VALUE function, VALUE tags, VALUE block) {
    return withSteps(function, [=](StepActions& steps) {
        const HookKind* const hook = hookKind(fromRuby(function));
        if (!hook)
            throwException(rb_eArgError,
                           QStringLiteral("there is no hook '%1'").arg(fromRuby(function)));
        steps.addHook(*hook, utf8OfRuby(tags), new RubyArgument(block), definitionOf(block));
        return Qnil;
    });
}

VALUE addType(VALUE, VALUE function, VALUE name, VALUE patterns, VALUE block) {
    return withSteps(function, [=](StepActions& steps) {
        requireType(patterns, T_ARRAY);
        std::vector<std::string> texts;
        for (const VALUE each : itemsOf(patterns))
            texts.push_back(utf8OfRuby(each));
        steps.registry().addParameterType(utf8OfRuby(name), std::move(texts),
                                          NIL_P(block) ? nullptr : new RubyArgument(block));
        return Qnil;
    });
}

// The values of Tamrix::StepContext

/// An Array of the value; nil when there is none.
VALUE scoped(VALUE, VALUE name) {
    return withSteps(name, [=](StepActions& steps) {
        const auto found = steps.scopes().find(fromRuby(name));
        if (!found)
            return Qnil;
        const VALUE value = rubyValue(found);
        return protect([=] { return rb_ary_new_from_args(1, value); });
    });
}

VALUE setScoped(VALUE, VALUE name, VALUE value) {
    return withSteps(name, [=](StepActions& steps) {
        steps.scopes().set(fromRuby(name), new RubyArgument(value));
        return value;
    });
}

VALUE allScoped(VALUE, VALUE function) {
    return withSteps(function, [](StepActions& steps) {
        return hashOf(
            steps.scopes().all(), [](const QString& name) { return toRuby(name); }, rubyValue);
    });
}

VALUE constantOf(const char* path, const char* name) {
    return protect([=] { return rb_const_get(rb_path2class(path), rb_intern(name)); });
}

}  // namespace

void defineStepFunctions(VALUE native) {
    rb_define_singleton_method(native, "add_step", addStep, 4);
    rb_define_singleton_method(native, "add_hook", addHook, 3);
    rb_define_singleton_method(native, "add_type", addType, 4);
    rb_define_singleton_method(native, "scoped", scoped, 1);
    rb_define_singleton_method(native, "set_scoped", setScoped, 2);
    rb_define_singleton_method(native, "all_scoped", allScoped, 1);
}

VALUE stepContext() {
    return constantOf("Tamrix::StepContext", "CURRENT");
}

bool isPendingStep(VALUE exception) {
    return rb_obj_is_kind_of(exception, constantOf("Tamrix", "PendingStepError")) == Qtrue;
}

}  // namespace Tamrix::RubyPlugin
