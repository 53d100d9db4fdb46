#include "plugins/ruby/stepfunctions.h"

#include <string>
#include <vector>

#include "interpreter/language/stepactions.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/exceptions.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/nativefunctions.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"

namespace Tamrix::RubyPlugin {

namespace {

VALUE s_context = Qnil;
VALUE s_pendingStepError = Qnil;

/// Runs `work` with the steps of the interpreter whose scripts run, on their thread. What the
/// library refuses becomes an ArgumentError.
template <typename Work>
VALUE withSteps(Work work) {
    return enterNative([=] {
        RubyInterpreter* const interpreter = RubyInterpreter::active();
        const QString function = QString::fromUtf8(rb_id2name(rb_frame_callee()));
        if (!interpreter || !interpreter->isScriptThread())
            raiseFailure(refusedCall(function, interpreter != nullptr));
        try {
            return work(interpreter->steps());
        } catch (const Gherkin::ExpressionError& error) {
            throwException(rb_eArgError, QString::fromUtf8(error.what()));
        }
    });
}

VALUE blockOrRaise() {
    if (rb_block_given_p() == 0)
        throwException(rb_eArgError, QStringLiteral("what is to be done stands in a block"));
    return protect([] { return rb_block_proc(); });
}

/// Where a block is defined.
Gherkin::ScriptLocation locationOf(VALUE block) {
    const VALUE location = callMethod(block, "source_location");
    if (!RB_TYPE_P(location, T_ARRAY))
        return {};
    return {scriptPath(fromRuby(rb_ary_entry(location, 0)).toUtf8()).toStdString(),
            NUM2INT(rb_ary_entry(location, 1))};
}

/// The pattern of a Regexp, with its flags in front: Ruby's "^" and "$" stand at lines, its "m" is
/// what others call "s".
std::string patternOf(VALUE expression) {
    const long options = NUM2LONG(callMethod(expression, "options"));
    constexpr long ignoresCase = 1;
    constexpr long isExtended = 2;
    constexpr long matchesLines = 4;
    if ((options & isExtended) != 0)
        throwException(rb_eArgError,
                       QStringLiteral("steps know no extended regular expressions (/x)"));
    std::string letters;
    if ((options & ignoresCase) != 0)
        letters += 'i';
    if ((options & matchesLines) != 0)
        letters += 's';
    const std::string source = utf8OfRuby(callMethod(expression, "source"));
    return letters.empty() ? source : "(?" + letters + ")" + source;
}

std::string expressionOf(VALUE expression, bool* isRegular) {
    *isRegular = RB_TYPE_P(expression, T_REGEXP);
    if (*isRegular)
        return patternOf(expression);
    if (!RB_TYPE_P(expression, T_STRING))
        throwException(rb_eTypeError,
                       QStringLiteral("an expression is a String or a Regexp, not %1")
                           .arg(classNameOf(expression)));
    return utf8OfRuby(expression);
}

VALUE registerStep(VALUE, VALUE expression) {
    return withSteps([=](StepActions& steps) {
        const VALUE block = blockOrRaise();
        bool isRegular = false;
        const std::string text = expressionOf(expression, &isRegular);
        steps.registry().addStep(text, isRegular, new RubyArgument(block), locationOf(block));
        return Qnil;
    });
}

template <Gherkin::HookType type, Gherkin::HookOrder order>
VALUE registerHook(int count, VALUE* arguments, VALUE) {
    return withSteps([=](StepActions& steps) {
        const VALUE block = blockOrRaise();
        if (count > 1)
            throwException(rb_eArgError, QStringLiteral("a hook is for one tag expression"));
        const std::string tags = count == 1 ? utf8OfRuby(arguments[0]) : std::string();
        steps.registry().addHook(type, order, tags, new RubyArgument(block),
                                 QString::fromStdString(locationOf(block).fileName));
        return Qnil;
    });
}

/// parameter_type(name, pattern) { |text| value }
VALUE registerType(VALUE, VALUE name, VALUE pattern) {
    return withSteps([=](StepActions& steps) {
        const VALUE block = rb_block_given_p() != 0 ? blockOrRaise() : Qnil;
        std::vector<std::string> patterns;
        bool isRegular = false;
        if (RB_TYPE_P(pattern, T_ARRAY)) {
            for (long index = 0; index < RARRAY_LEN(pattern); ++index)
                patterns.push_back(expressionOf(rb_ary_entry(pattern, index), &isRegular));
        } else {
            patterns.push_back(expressionOf(pattern, &isRegular));
        }
        steps.registry().addParameterType(utf8OfRuby(name), std::move(patterns),
                                          NIL_P(block) ? nullptr : new RubyArgument(block));
        return Qnil;
    });
}

VALUE raisePending(int count, VALUE* arguments, VALUE) {
    return enterNative([=]() -> VALUE {
        throwException(s_pendingStepError,
                       count > 0 ? textOf(arguments[0])
                                 : QStringLiteral("the step definition is to be written"));
    });
}

// Tamrix::StepContext

VALUE contextMissing(int count, VALUE* arguments, VALUE) {
    return enterNative([=] {
        const QString name = fromRuby(arguments[0]);
        RubyInterpreter* const interpreter = RubyInterpreter::active();
        if (!interpreter || !interpreter->isScriptThread())
            raiseFailure(refusedCall(name, interpreter != nullptr));
        StepScopes& scopes = interpreter->steps().scopes();
        if (name.endsWith('=') && count == 2) {
            scopes.set(name.chopped(1), new RubyArgument(arguments[1]));
            return arguments[1];
        }
        if (const auto value = count == 1 ? scopes.find(name) : nullptr)
            return rubyValue(value);
        return protect([=] { return rb_call_super(count, arguments); });
    });
}

VALUE contextResponds(VALUE, VALUE name, VALUE) {
    return enterNative([=] {
        RubyInterpreter* const interpreter = RubyInterpreter::active();
        const bool isKnown = interpreter && interpreter->isScriptThread() &&
                             interpreter->steps().scopes().find(fromRuby(name));
        return isKnown || fromRuby(name).endsWith('=') ? Qtrue : Qfalse;
    });
}

VALUE contextToHash(VALUE) {
    return enterNative([=] {
        const VALUE hash = protect([] { return rb_hash_new(); });
        RubyInterpreter* const interpreter = RubyInterpreter::active();
        if (!interpreter || !interpreter->isScriptThread())
            return hash;
        for (const auto& [name, each] : interpreter->steps().scopes().all()) {
            const VALUE key = toRuby(name);
            const VALUE value = rubyValue(each);
            protect([=] { return rb_hash_aset(hash, rb_str_intern(key), value); });
        }
        return hash;
    });
}

}  // namespace

void defineStepFunctions(VALUE module) {
    using namespace Gherkin;
    s_pendingStepError = rb_define_class_under(module, "PendingStepError", rb_eStandardError);
    rb_gc_register_address(&s_pendingStepError);
    const VALUE type = rb_define_class_under(module, "StepContext", rb_cObject);
    rb_define_private_method(type, "method_missing", contextMissing, -1);
    rb_define_private_method(type, "respond_to_missing?", contextResponds, 2);
    rb_define_method(type, "to_h", contextToHash, 0);
    s_context = rb_obj_alloc(type);
    rb_gc_register_address(&s_context);

    // With capitals: "when" and "then" are Ruby's own words.
    for (const char* const name : {"Given", "When", "Then", "Step"})
        rb_define_private_method(rb_mKernel, name, registerStep, 1);
    const struct {
        const char* name;
        Entry function;
    } hooks[] = {{"before_feature", registerHook<FeatureHook, BeforeHook>},
                 {"after_feature", registerHook<FeatureHook, AfterHook>},
                 {"before_scenario", registerHook<ScenarioHook, BeforeHook>},
                 {"after_scenario", registerHook<ScenarioHook, AfterHook>},
                 {"before_step", registerHook<StepHook, BeforeHook>},
                 {"after_step", registerHook<StepHook, AfterHook>}};
    for (const auto& row : hooks)
        rb_define_private_method(rb_mKernel, row.name, row.function, -1);
    rb_define_private_method(rb_mKernel, "parameter_type", registerType, 2);
    rb_define_private_method(rb_mKernel, "pending", raisePending, -1);
}

VALUE stepContext() {
    return s_context;
}

bool isPendingStep(VALUE exception) {
    return rb_obj_is_kind_of(exception, s_pendingStepError) == Qtrue;
}

}  // namespace Tamrix::RubyPlugin
