#include "plugins/perl/perlcontext.h"

#include <utility>

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conditions.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/perldebugger.h"

namespace Tamrix::PerlPlugin {

namespace {

/// The package of a namespace or class of the library, `main` for global names.
QByteArray packageOf(const QString& owner) {
    if (owner.isEmpty())
        return QByteArray("main");
    return owner == "ApplicationContext" ? QByteArray("tamrix::ApplicationContext")
                                         : owner.toUtf8();
}

}  // namespace

// Values

SvRef PerlContext::makeValue(const ScriptArgument::List& values) {
    dTHX;
    AV* const array = newAV();
    av_extend(array, static_cast<SSize_t>(values.size()));
    for (const SharedPtr<ScriptArgument>& value : values)
        av_push(array, newSVsv_nomg(valueOf(value)));
    return SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(array)));
}

SvRef PerlContext::makeValue(const ScriptArgument::Map& values) {
    dTHX;
    HV* const hash = newHV();
    for (const auto& [name, value] : values) {
        const SvRef key = toPerl(aTHX_ name);
        static_cast<void>(hv_store_ent(hash, key.get(), newSVsv_nomg(valueOf(value)), 0));
    }
    return SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(hash)));
}

// Registration

void PerlContext::define(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    m_interpreter.functions().define(packageOf(signature.owner), signature.name, function);
}

void PerlContext::defineMember(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    m_interpreter.functions().define("tamrix::" + signature.owner.toUtf8(), signature.name,
                                     function);
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

}  // namespace Tamrix::PerlPlugin
