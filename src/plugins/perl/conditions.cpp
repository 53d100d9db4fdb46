#include "plugins/perl/conditions.h"

#include <QStringList>
#include <utility>

#include "interpreter/language/languagedebugger.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/lexicals.h"
#include "plugins/perl/perlargument.h"
#include "plugins/perl/perlvaluetexts.h"
#include "plugins/perl/prelude.h"

namespace Tamrix::PerlPlugin {

namespace {

void store(pTHX_ HV* hash, const QString& key, SvRef value) {
    static_cast<void>(hv_store_ent(hash, toPerl(aTHX_ key).get(), value.release(), 0));
}

SvRef referenceTo(pTHX_ SV* value) {
    return SvRef::steal(newRV_inc(value));
}

/// A copy of what the running function was called with: its array has no references of its own.
SvRef argumentsOfFunction(pTHX) {
    AV* const arguments = GvAV(PL_defgv);
    AV* const copy = newAV();
    for (SSize_t index = 0; arguments && index <= AvFILLp(arguments); ++index)
        av_push(copy, SvREFCNT_inc(AvARRAY(arguments)[index]));
    return SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(copy)));
}

/// References to the variables of a frame, by their names.
SvRef variablesOf(pTHX_ const CodeFrame& frame) {
    HV* const variables = newHV();
    for (const Lexical& each : lexicalsOf(frame))
        store(aTHX_ variables, each.name, referenceTo(aTHX_ each.variable.get()));
    store(aTHX_ variables, QStringLiteral("@_"), argumentsOfFunction(aTHX));
    return SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(variables)));
}

}  // namespace

QString explainCall(pTHX_ CaseInterpreter& interpreter, const char* parameter) {
    const std::vector<CodeFrame> running = runningCode(aTHX);
    if (running.empty() || !interpreter.files().isScript(CopFILE(running.front().statement)))
        return {};
    if (!get_cv("tamrix::Condition::explain", 0))
        runPrelude(aTHX_ "condition");
    // 1. Where the call stands.
    const COP* const statement = running.front().statement;
    const HV* const package = CopSTASH(statement);
    HV* const frame = newHV();
    const SvRef reference = SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(frame)));
    const QByteArray file = interpreter.files().path(CopFILE(statement)).toUtf8();
    store(aTHX_ frame, QStringLiteral("file"),
          SvRef::steal(newSVpvn(file.constData(), static_cast<STRLEN>(file.size()))));
    store(aTHX_ frame, QStringLiteral("line"),
          SvRef::steal(newSViv(static_cast<IV>(CopLINE(statement)))));
    store(aTHX_ frame, QStringLiteral("package"),
          SvRef::steal(newSVpv(package ? HvNAME_get(package) : "main", 0)));
    store(aTHX_ frame, QStringLiteral("variables"), variablesOf(aTHX_ running.front()));
    // 2. Its condition, then variables and their values in turns.
    const LanguageDebugger::CatchesErrors catching(interpreter.languageDebugger());
    CodeEnd told = callOwn(aTHX_ "tamrix::Condition::explain",
                           {reference, SvRef::steal(newSVpv(parameter, 0))});
    if (told.ending == Ending::Died)
        return {};
    const ScriptArgument::List parts = PerlArgument(valueOrThrow(std::move(told))).toList();
    if (parts.empty())
        return {};
    QStringList lines{parts.front()->toString()};
    for (std::size_t index = 1; index + 1 < parts.size(); index += 2)
        lines.append(parts[index]->toString() + ": " +
                     PerlValueTexts().textOf(aTHX_ valueOf(parts[index + 1])));
    return lines.join('\n');
}

}  // namespace Tamrix::PerlPlugin
