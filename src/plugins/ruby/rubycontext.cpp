#include "plugins/ruby/rubycontext.h"

#include "plugins/ruby/conditions.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/nativeclasses.h"
#include "plugins/ruby/nativefunctions.h"
#include "plugins/ruby/objectclass.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyruntime.h"
#include "plugins/ruby/scripterrors.h"
#include "plugins/ruby/valueclasses.h"

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

RubyContext::RubyContext(RubyInterpreter& interpreter)
    : LanguageContext(interpreter), m_interpreter(interpreter) {}

ScriptContext* RubyContext::createSubContext() {
    auto* const context = new RubyContext(m_interpreter);
    context->setTestResult(testResult());
    return context;
}

// Values

SharedPtr<ScriptArgument> RubyContext::createNull() {
    return argumentOf(Qnil);
}

SharedPtr<ScriptArgument> RubyContext::createBool(bool value) {
    return argumentOf(value ? Qtrue : Qfalse);
}

SharedPtr<ScriptArgument> RubyContext::createInt64(long long value) {
    return argumentOf(LL2NUM(value));
}

SharedPtr<ScriptArgument> RubyContext::createDouble(double value) {
    return argumentOf(DBL2NUM(value));
}

SharedPtr<ScriptArgument> RubyContext::createString(const QString& value) {
    return argumentOf(toRuby(value));
}

SharedPtr<ScriptArgument> RubyContext::createDateTime(const QDateTime& value) {
    return argumentOf(toRuby(value));
}

SharedPtr<ScriptArgument> RubyContext::createBytes(const QByteArray& value) {
    const char* const data = value.constData();
    const long size = value.size();
    return argumentOf(protect([=] { return rb_str_new(data, size); }));
}

SharedPtr<ScriptArgument> RubyContext::createList(
    const std::vector<SharedPtr<ScriptArgument>>& values) {
    return argumentOf(arrayOf(values, rubyValue));
}

SharedPtr<ScriptArgument> RubyContext::createMap(
    const std::map<QString, SharedPtr<ScriptArgument>>& values) {
    return argumentOf(hashOf(
        values, [](const QString& name) { return toRuby(name); }, rubyValue));
}

SharedPtr<ScriptArgument> RubyContext::createNative(SharedPtr<NativeScriptObject> object) {
    return argumentOf(wrapNative(object));
}

SharedPtr<ScriptArgument> RubyContext::createObject(SharedPtr<Object> object) {
    return argumentOf(wrapObject(object));
}

SharedPtr<ScriptArgument> RubyContext::createTestDataSet(TestDataSet* dataSet) {
    return argumentOf(wrapDataSet(SharedPtr<TestDataSet>(dataSet)));
}

SharedPtr<ScriptArgument> RubyContext::createContext(SharedPtr<ApplicationContext> context) {
    return argumentOf(wrapContext(context));
}

SharedPtr<ScriptArgument> RubyContext::createLocation(const ScriptLocation& location) {
    return argumentOf(wrapLocation(location));
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
    const VALUE rubyClass = classOfMembers(signature.owner);
    if (NIL_P(rubyClass))
        LanguageContext::defineMember(function);
    else
        defineMethod(rubyClass, signature.name, entryOf(function, Front::Self));
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
    constexpr auto fileName = "(test.exception)";
    const auto slip = [&](const QString& text) {
        const auto error =
            m_interpreter.attempt([&] { RubyRuntime::self().compile(text, fileName); });
        return error ? error->message : QString();
    };
    return attemptException(*code,
                            {slip, [&](const QString& text) { evaluateInCaller(text, fileName); },
                             [&] { callCallable(rubyValue(code), {}); }});
}

bool RubyContext::evaluateCondition(const QString& expression, QString* error) {
    return attemptCondition([&] { return RTEST(evaluateInCaller(expression, "(waitFor)")); },
                            error);
}

bool RubyContext::evaluate(const QString& text, const QString& fileName) {
    return evaluateFile(fileName, [&] { RubyRuntime::self().run(text, fileName); });
}

QString RubyContext::explainArgument(const char* parameter) {
    return explainCall(parameter);
}

}  // namespace Tamrix::RubyPlugin
