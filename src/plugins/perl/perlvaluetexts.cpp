#include "plugins/perl/perlvaluetexts.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "interpreter/language/literals.h"
#include "interpreter/language/valuepath.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/departure.h"
#include "plugins/perl/guardedcall.h"
#include "plugins/perl/hooks.h"
#include "plugins/perl/literal.h"
#include "plugins/perl/scripterrors.h"

namespace Tamrix::PerlPlugin {

namespace {

bool isTied(SV* container) {
    return SvRMAGICAL(container) && mg_find(container, PERL_MAGIC_tied);
}

bool isContainer(SV* value) {
    return SvTYPE(value) == SVt_PVAV || SvTYPE(value) == SVt_PVHV;
}

/// The array or hash that a reference leads to, unless looking at it would run code of the script.
SV* targetOf(SV* value) {
    SV* const target = SvROK(value) ? SvRV(value) : nullptr;
    return target && isContainer(target) && !isTied(target) ? target : nullptr;
}

QString functionText(pTHX_ CV* code) {
    const GV* const glob = CvNAMED(code) ? nullptr : CvGV(code);
    if (!glob || CvANON(code))
        return QStringLiteral("sub {...}");
    return QStringLiteral("\\&%1::%2")
        .arg(QString::fromUtf8(HvNAME_get(GvSTASH(glob))), QString::fromUtf8(GvNAME(glob)));
}

}  // namespace

QString PerlValueTexts::quoted(const QString& text) {
    QString quoted = literalOf(text.left(longest), {'"', "", numberedCharacter, 1});
    if (text.size() > longest) {
        quoted.chop(1);
        quoted += QStringLiteral("...");
    }
    return quoted;
}

ValueTexts::Value valueOfVariable(pTHX_ SV* variable) {
    if (isContainer(variable))
        return new PerlArgument(SvRef::steal(newRV_inc(variable)));
    return new PerlArgument(SvRef::borrow(variable));
}

PerlValueTexts::Parts PerlValueTexts::partsOf(const Value& value, int end, int) {
    dTHX;
    SV* const target = targetOf(valueOf(value));
    if (!target)
        return {};
    if (SvTYPE(target) == SVt_PVAV) {
        auto* const array = reinterpret_cast<AV*>(target);
        return {static_cast<int>(av_count(array)), [=](int index) {
                    SV** const place = av_fetch(array, index, 0);
                    return Part{QString::number(index),
                                valueOfVariable(aTHX_ place ? *place : &PL_sv_undef)};
                }};
    }
    auto* const hash = reinterpret_cast<HV*>(target);
    const auto entries = end > 0 ? entriesOf(aTHX_ hash) : std::vector<std::pair<QString, SV*>>();
    return {static_cast<int>(HvUSEDKEYS(hash)), [=](int index) {
                const auto& [key, entry] = entries.at(static_cast<std::size_t>(index));
                return Part{"['" + pathPart(key, "'\\[]()\"") + "']", valueOfVariable(aTHX_ entry),
                            quoted(key) + " => "};
            }};
}

QString PerlValueTexts::text(const Value& value, int depth) {
    dTHX;
    return bounded(aTHX_ valueOf(value), depth);
}

QString PerlValueTexts::bounded(pTHX_ SV* value, int depth) {
    if (!value)
        return QStringLiteral("undef");
    if (SvROK(value))
        return referenceText(aTHX_ value, depth);
    if (SvRMAGICAL(value) && mg_find(value, PERL_MAGIC_tiedscalar))
        return QStringLiteral("<tied>");
    if (!SvOK(value))
        return QStringLiteral("undef");
    if (SvIsBOOL(value))
        return QString(QLatin1String(SvTRUE_nomg(value) ? "true" : "false"));
    STRLEN size = 0;
    const char* const bytes = SvPV_nomg_const(value, size);
    // More bytes than characters are shown need not be looked at.
    const QString text = textOfBytes(
        aTHX_ bytes, std::min<STRLEN>(size, static_cast<STRLEN>(4 * (longest + 1))), SvUTF8(value));
    return isNumberValue(aTHX_ value) || isGV(value) ? text : quoted(text);
}

QString PerlValueTexts::referenceText(pTHX_ SV* value, int depth) {
    SV* const target = SvRV(value);
    if (SvTYPE(target) == SVt_REGEXP) {
        STRLEN size = 0;
        const char* const bytes = SvPV_nomg_const(target, size);
        return "qr/" + textOfBytes(aTHX_ bytes, size, SvUTF8(target)) + "/";
    }
    if (SvTYPE(target) == SVt_PVCV && !SvOBJECT(target))
        return functionText(aTHX_ reinterpret_cast<CV*>(target));
    if (SvOBJECT(target) && SvAMAGIC(value))
        return objectText(aTHX_ value);
    const QString name = SvOBJECT(target) ? QString::fromUtf8(HvNAME_get(SvSTASH(target))) : "";
    if (isContainer(target))
        return (name.isEmpty() ? QString() : name + " ") + containerText(aTHX_ value, depth);
    if (SvOBJECT(target))
        return "<" + name + ">";
    return depth < deepest ? "\\" + bounded(aTHX_ target, depth + 1) : QStringLiteral("...");
}

QString PerlValueTexts::containerText(pTHX_ SV* value, int depth) {
    if (isTied(SvRV(value)))
        return QStringLiteral("<tied>");
    const QString inner = partsText(new PerlArgument(SvRef::borrow(value)), depth);
    return SvTYPE(SvRV(value)) == SVt_PVAV ? '[' + inner + ']' : '{' + inner + '}';
}

QString PerlValueTexts::objectText(pTHX_ SV* value) {
    const HeldDepartures held;
    return scriptText(requestTimeLimit, [&]() -> std::optional<Outcome<QString>> {
        takeTimeExpired();
        CodeEnd end = callOwn(aTHX_ "tamrix::_text", {SvRef::borrow(value)});
        if (takeTimeExpired())
            return std::nullopt;
        if (end.ending == Ending::Returned)
            return PerlPlugin::textOf(aTHX_ end.value.get());
        return fail(FailureKind::Failed, end.ending == Ending::Died
                                             ? ScriptErrors::messageOf(aTHX_ end.value.get())
                                             : ScriptErrors::ofDeparture(aTHX).message);
    });
}

}  // namespace Tamrix::PerlPlugin
