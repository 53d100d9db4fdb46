#include "plugins/ruby/rubycontext.h"

#include "interpreter/language/stepactions.h"
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

SharedPtr<ScriptArgument> argumentOf(VALUE value) {
    return new RubyArgument(value);
}

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

SharedPtr<ScriptArgument> RubyContext::createInteger(int value) {
    return argumentOf(INT2FIX(value));
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
    const long size = static_cast<long>(values.size());
    const VALUE array = protect([=] { return rb_ary_new_capa(size); });
    for (const SharedPtr<ScriptArgument>& each : values) {
        const VALUE value = rubyValue(each);
        protect([=] { return rb_ary_push(array, value); });
    }
    return argumentOf(array);
}

SharedPtr<ScriptArgument> RubyContext::createMap(
    const std::map<QString, SharedPtr<ScriptArgument>>& values) {
    const VALUE hash = protect([] { return rb_hash_new(); });
    for (const auto& [name, each] : values) {
        const VALUE key = toRuby(name);
        const VALUE value = rubyValue(each);
        protect([=] { return rb_hash_aset(hash, key, value); });
    }
    return argumentOf(hash);
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

// Registration: each entry of the tables becomes a name of Ruby too.

void RubyContext::addGlobalFunction(const QString& name, Function function) {
    ScriptContext::addGlobalFunction(name, function);
    defineGlobal(name, entryOf(NativeFunction(*this, signatureOfTable({}, name), function)));
}

void RubyContext::addStaticMemberFunction(const QString& className, const QString& name,
                                          Function function) {
    ScriptContext::addStaticMemberFunction(className, name, function);
    defineSingleton(RubyRuntime::self().nameSpace(className), name,
                    entryOf(NativeFunction(*this, signatureOfTable(className, name), function)));
}

void RubyContext::addMemberFunction(const QString& className, const QString& name,
                                    Function function) {
    ScriptContext::addMemberFunction(className, name, function);
    const VALUE rubyClass = classOfMembers(className);
    if (NIL_P(rubyClass)) {
        qWarning("Ruby has no class for the member functions of %s",
                 className.toLocal8Bit().constData());
        return;
    }
    defineMethod(
        rubyClass, name,
        entryOf(NativeFunction(*this, signatureOfTable(className, name), function), Front::Self));
}

void RubyContext::addConstant(const QString& name, int value) {
    ScriptContext::addConstant(name, value);
    const QString separator = QStringLiteral("::");
    const bool isOfNameSpace = name.contains(separator);
    const QString own = isOfNameSpace ? name.section(separator, 1) : name;
    RubyRuntime::self().defineConstant(isOfNameSpace ? name.section(separator, 0, 0) : QString(),
                                       own, value);
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
    try {
        if (code->isString())
            evaluateInCaller(code->toString(), "(test.exception)");
        else if (code->isCallable())
            callCallable(rubyValue(code), {});
        else
            return {QString(), "Neither code as text nor a callable: " + code->toString()};
    } catch (const ScriptErrorSet&) {
        if (!isOrdinaryError())
            throw;
        // A slip in the code is not the exception that the test is about.
        if (rb_obj_is_kind_of(pendingException(), rb_eSyntaxError) == Qtrue)
            return {QString(), "The code is not valid: " + takeScriptError().message};
        return {"Raised " + takeScriptError().message, QString()};
    }
    return {QString(), QStringLiteral("No exception was raised")};
}

bool RubyContext::evaluateCondition(const QString& expression, QString* error) {
    try {
        return RTEST(evaluateInCaller(expression, "(waitFor)"));
    } catch (const ScriptErrorSet&) {
        if (!isOrdinaryError())
            throw;
    }
    *error = takeScriptError().message;
    return false;
}

QString RubyContext::explainArgument(const char* parameter) {
    return explainCall(parameter);
}

bool RubyContext::evaluate(const QString& text, const QString& fileName) {
    // What a file registers that is loaded again takes the place of what it did before.
    m_interpreter.steps().registry().forget(fileName);
    try {
        RubyRuntime::self().run(text, fileName);
        return true;
    } catch (const ScriptErrorSet&) {
        if (!isOrdinaryError())
            throw;
    }
    const ScriptError error = takeScriptError();
    setError(error.callStack.empty()
                 ? error.message
                 : QStringLiteral("%1:%2: %3")
                       .arg(error.callStack.front().fileName(),
                            QString::number(error.callStack.front().lineNumber()), error.message));
    return false;
}

}  // namespace Tamrix::RubyPlugin
