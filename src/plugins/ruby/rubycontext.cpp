#include "plugins/ruby/rubycontext.h"

#include "plugins/ruby/conditions.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/nativefunctions.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyruntime.h"
#include "plugins/ruby/scripterrors.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Evaluates code where the script calls. It sees and sets the variables there.
VALUE evaluateInCaller(const QString& code, const char* fileName) {
    const VALUE text = toRuby(code);
    const VALUE file = toRuby(QString(QLatin1String(fileName)));
    return protect(
        [=] { return rb_funcall(rb_binding_new(), rb_intern("eval"), 3, text, file, INT2FIX(1)); });
}

}  // namespace

// Values

VALUE RubyContext::makeValue(const ScriptArgument::List& values) {
    return arrayOf(values, rubyValue);
}

VALUE RubyContext::makeValue(const ScriptArgument::Map& values) {
    return hashOf(
        values, [](const QString& name) { return toRuby(name); }, rubyValue);
}

SharedPtr<ScriptArgument> RubyContext::createLocation(const ScriptLocation& location) {
    return wrapped(wrapLocation(location));
}

// Registration

void RubyContext::define(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    if (signature.owner.isEmpty())
        defineGlobal(signature.name, entryOf(function));
    else
        defineSingleton(RubyRuntime::self().nameSpace(signature.owner), signature.name,
                        entryOf(function));
}

void RubyContext::defineMember(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    const VALUE module = rb_path2class("Tamrix");
    const ID name = rb_intern(signature.owner.toUtf8().constData());
    if (rb_const_defined_at(module, name) == 0)
        LanguageContext::defineMember(function);
    else
        defineMethod(rb_const_get_at(module, name), signature.name, entryOf(function, Front::Self));
}

void RubyContext::defineConstant(const QString& owner, const QString& name, int value) {
    RubyRuntime::self().defineConstant(owner, name, value);
}

// Positions

bool RubyContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    return scriptFrameAt(ancestorLevel, &position);
}

// The language's own judgement

bool RubyContext::valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) {
    const VALUE first = rubyValue(left);
    const VALUE second = rubyValue(right);
    return RTEST(protect([=] { return rb_equal(first, second); }));
}

std::pair<QString, QString> RubyContext::evaluateForException(SharedPtr<ScriptArgument> code) {
    return attemptException(
        *code, {nullptr, [](const QString& text) { evaluateInCaller(text, "(test.exception)"); },
                [&] { callCallable(rubyValue(code), {}); }});
}

bool RubyContext::evaluateCondition(const QString& expression, QString* error) {
    return attemptCondition([&] { return RTEST(evaluateInCaller(expression, "(waitFor)")); },
                            error);
}

QString RubyContext::explainArgument(const char* parameter) {
    return explainCall(parameter);
}

}  // namespace Tamrix::RubyPlugin
