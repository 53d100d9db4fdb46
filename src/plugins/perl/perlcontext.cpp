#include "plugins/perl/perlcontext.h"

#include <utility>

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conditions.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/nativeclasses.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/perldebugger.h"

namespace Tamrix::PerlPlugin {

namespace {

SharedPtr<ScriptArgument> argumentOf(SvRef value) {
    return new PerlArgument(std::move(value));
}

SharedPtr<ScriptArgument> argumentOf(SV* value) {
    return new PerlArgument(SvRef::steal(value));
}

/// The package of a namespace or class of the library, `main` for global names.
QByteArray packageOf(const QString& owner) {
    if (owner.isEmpty())
        return QByteArray("main");
    return owner == "ApplicationContext" ? QByteArray("tamrix::ApplicationContext")
                                         : owner.toUtf8();
}

}  // namespace

PerlContext::PerlContext(CaseInterpreter& interpreter)
    : LanguageContext(interpreter), m_interpreter(interpreter) {}

ScriptContext* PerlContext::createSubContext() {
    auto* const context = new PerlContext(m_interpreter);
    context->setTestResult(testResult());
    return context;
}

// Values

SharedPtr<ScriptArgument> PerlContext::createNull() {
    dTHX;
    return argumentOf(newSV(0));
}

SharedPtr<ScriptArgument> PerlContext::createBool(bool value) {
    dTHX;
    return argumentOf(newSVsv(value ? &PL_sv_yes : &PL_sv_no));
}

SharedPtr<ScriptArgument> PerlContext::createInt64(long long value) {
    dTHX;
    return argumentOf(newSViv(value));
}

SharedPtr<ScriptArgument> PerlContext::createDouble(double value) {
    dTHX;
    return argumentOf(newSVnv(value));
}

SharedPtr<ScriptArgument> PerlContext::createString(const QString& value) {
    dTHX;
    return argumentOf(toPerl(aTHX_ value));
}

SharedPtr<ScriptArgument> PerlContext::createDateTime(const QDateTime& value) {
    dTHX;
    return argumentOf(toPerlTime(aTHX_ value));
}

SharedPtr<ScriptArgument> PerlContext::createBytes(const QByteArray& value) {
    dTHX;
    return argumentOf(newSVpvn(value.constData(), static_cast<STRLEN>(value.size())));
}

SharedPtr<ScriptArgument> PerlContext::createList(
    const std::vector<SharedPtr<ScriptArgument>>& values) {
    dTHX;
    AV* const array = newAV();
    av_extend(array, static_cast<SSize_t>(values.size()));
    for (const SharedPtr<ScriptArgument>& value : values)
        av_push(array, newSVsv_nomg(valueOf(value)));
    return argumentOf(newRV_noinc(reinterpret_cast<SV*>(array)));
}

SharedPtr<ScriptArgument> PerlContext::createMap(
    const std::map<QString, SharedPtr<ScriptArgument>>& values) {
    dTHX;
    HV* const hash = newHV();
    for (const auto& [name, value] : values) {
        const SvRef key = toPerl(aTHX_ name);
        static_cast<void>(hv_store_ent(hash, key.get(), newSVsv_nomg(valueOf(value)), 0));
    }
    return argumentOf(newRV_noinc(reinterpret_cast<SV*>(hash)));
}

SharedPtr<ScriptArgument> PerlContext::createNative(SharedPtr<NativeScriptObject> object) {
    dTHX;
    return argumentOf(wrapNative(aTHX_ std::move(object)));
}

SharedPtr<ScriptArgument> PerlContext::createObject(SharedPtr<Object> object) {
    dTHX;
    return argumentOf(ObjectHolder::wrap(aTHX_ std::move(object), "tamrix::Object"));
}

SharedPtr<ScriptArgument> PerlContext::createTestDataSet(TestDataSet* dataSet) {
    dTHX;
    return argumentOf(
        DataSetHolder::wrap(aTHX_ SharedPtr<TestDataSet>(dataSet), "tamrix::DataSet"));
}

SharedPtr<ScriptArgument> PerlContext::createContext(SharedPtr<ApplicationContext> context) {
    dTHX;
    return argumentOf(
        ApplicationContextHolder::wrap(aTHX_ std::move(context), "tamrix::ApplicationContext"));
}

// Registration

void PerlContext::define(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    m_interpreter.functions().define(packageOf(signature.owner), signature.name, function);
}

void PerlContext::defineMember(const NativeFunction& function) {
    define(function);
}

void PerlContext::defineConstant(const QString& owner, const QString& name, int value) {
    dTHX;
    newCONSTSUB(gv_stashpv(packageOf(owner).constData(), GV_ADD | SVf_UTF8),
                name.toUtf8().constData(), newSViv(value));
    if (owner.isEmpty())
        m_interpreter.functions().addGlobalName(name);
}

QString PerlContext::explainArgument(const char* parameter) {
    dTHX;
    return explainCall(aTHX_ m_interpreter, parameter);
}

// The language's own judgement

bool PerlContext::valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) {
    dTHX;
    const SvRef equal = valueOrThrow(callOwn(
        aTHX_ "tamrix::_equal", {SvRef::borrow(valueOf(left)), SvRef::borrow(valueOf(right))}));
    return SvTRUE_nomg(equal.get());
}

std::pair<QString, QString> PerlContext::evaluateForException(SharedPtr<ScriptArgument> code) {
    dTHX;
    const LanguageDebugger::CatchesErrors catching(m_interpreter.languageDebugger());
    // Perl compiles a text by running it.
    CodeEnd end;
    const auto slip = [&](const QString& text) {
        bool isCompiled = false;
        end = m_interpreter.evaluateText(text, {}, &isCompiled);
        return isCompiled || end.ending != Ending::Died
                   ? QString()
                   : m_interpreter.errors().take(aTHX_ end.value).message;
    };
    return attemptException(*code, {slip, [&](const QString&) { valueOrThrow(std::move(end)); },
                                    [&] { valueOrThrow(callCode(aTHX_ valueOf(code), {})); }});
}

bool PerlContext::evaluateCondition(const QString& expression, QString* error) {
    return attemptCondition(
        [&] {
            return PerlArgument(valueOrThrow(m_interpreter.evaluateText(expression, {}, nullptr)))
                .toBool();
        },
        error);
}

bool PerlContext::evaluate(const QString& text, const QString& fileName) {
    return evaluateFile(fileName, [&] { m_interpreter.runText(text, fileName); });
}

}  // namespace Tamrix::PerlPlugin
