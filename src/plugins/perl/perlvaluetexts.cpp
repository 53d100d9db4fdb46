#include "plugins/perl/perlvaluetexts.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "interpreter/language/literals.h"
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

QString PerlValueTexts::bounded(pTHX_ SV* value, int depth) {
    if (!value)
        return QStringLiteral("undef");
    if (SvTYPE(value) == SVt_PVAV)
        return arrayText(aTHX_ reinterpret_cast<AV*>(value), depth);
    if (SvTYPE(value) == SVt_PVHV)
        return hashText(aTHX_ reinterpret_cast<HV*>(value), depth);
    if (SvTYPE(value) == SVt_PVCV)
        return functionText(aTHX_ reinterpret_cast<CV*>(value));
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
    if (!SvOBJECT(target)) {
        const bool isContainer =
            SvTYPE(target) == SVt_PVAV || SvTYPE(target) == SVt_PVHV || SvTYPE(target) == SVt_PVCV;
        if (!isContainer && depth >= deepest)
            return QStringLiteral("...");
        return isContainer ? bounded(aTHX_ target, depth) : "\\" + bounded(aTHX_ target, depth + 1);
    }
    if (SvAMAGIC(value))
        return objectText(aTHX_ value);
    const QString name = QString::fromUtf8(HvNAME_get(SvSTASH(target)));
    if (SvTYPE(target) == SVt_PVAV || SvTYPE(target) == SVt_PVHV)
        return name + " " + bounded(aTHX_ target, depth);
    return "<" + name + ">";
}

QString PerlValueTexts::arrayText(pTHX_ AV* array, int depth) {
    if (isTied(reinterpret_cast<SV*>(array)))
        return QStringLiteral("<tied>");
    SSize_t index = 0;
    return "[" +
           itemsText(depth, static_cast<qint64>(av_count(array)),
                     [&] {
                         SV** const place = av_fetch(array, index++, 0);
                         return bounded(aTHX_ place ? *place : nullptr, depth + 1);
                     }) +
           "]";
}

QString PerlValueTexts::hashText(pTHX_ HV* hash, int depth) {
    if (isTied(reinterpret_cast<SV*>(hash)))
        return QStringLiteral("<tied>");
    std::vector<std::pair<QString, SV*>> entries;
    if (depth < deepest)
        entries = entriesOf(aTHX_ hash);
    std::size_t index = 0;
    return "{" +
           itemsText(depth, static_cast<qint64>(HvUSEDKEYS(hash)),
                     [&] {
                         const auto& [key, value] = entries[index++];
                         return quoted(key) + " => " + bounded(aTHX_ value, depth + 1);
                     }) +
           "}";
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
