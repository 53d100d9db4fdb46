#include "plugins/perl/conversion.h"

#include <algorithm>
#include <cmath>

#include "interpreter/language/looseutf8.h"
#include "interpreter/language/scripterrorset.h"
#include "plugins/perl/guardedcall.h"

namespace Tamrix::PerlPlugin {

namespace {

QString className(pTHX_ SV* value) {
    return QString::fromUtf8(sv_reftype(SvRV(value), 1));
}

}  // namespace

SvRef toPerl(pTHX_ const QString& text) {
    const QByteArray bytes = text.isValidUtf16() ? text.toUtf8() : toLooseUtf8(text);
    SV* const value = newSVpvn(bytes.constData(), static_cast<STRLEN>(bytes.size()));
    if (bytes.size() != text.size())
        SvUTF8_on(value);
    return SvRef::steal(value);
}

QString textOfBytes(pTHX_ const char* bytes, STRLEN size, bool isUtf8) {
    if (!isUtf8)
        return QString::fromLatin1(bytes, static_cast<int>(size));
    if (is_strict_utf8_string(reinterpret_cast<const U8*>(bytes), size))
        return fromWholeUtf8(bytes, static_cast<int>(size));
    return fromLooseUtf8(bytes, static_cast<int>(size));
}

QString textOf(pTHX_ SV* value) {
    SvRef made;
    if (SvGMAGICAL(value) || SvAMAGIC(value)) {
        CodeEnd end = callOwn(aTHX_ "tamrix::_text", {SvRef::borrow(value)});
        if (end.ending == Ending::Left)
            throwEnd(end);
        if (end.ending == Ending::Died)
            return SvROK(value)
                       ? QStringLiteral("<unprintable %1 object>").arg(className(aTHX_ value))
                       : QStringLiteral("<unprintable value>");
        made = std::move(end.value);
        value = made.get();
    }
    if (!SvOK(value))
        return QString(QLatin1String(""));
    STRLEN size = 0;
    const char* const bytes = SvPV_nomg_const(value, size);
    return textOfBytes(aTHX_ bytes, size, SvUTF8(value));
}

SvRef plainValue(pTHX_ SV* value) {
    if (!SvGMAGICAL(value))
        return SvRef::borrow(value);
    return valueOrThrow(callOwn(aTHX_ "tamrix::_value", {SvRef::borrow(value)}));
}

std::vector<std::pair<QString, SV*>> entriesOf(pTHX_ HV* hash) {
    std::vector<std::pair<QString, SV*>> entries;
    hv_iterinit(hash);
    while (HE* const entry = hv_iternext(hash)) {
        STRLEN size = 0;
        const char* const key = HePV(entry, size);
        entries.emplace_back(textOfBytes(aTHX_ key, size, HeUTF8(entry)), HeVAL(entry));
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

SvRef toPerlTime(pTHX_ const QDateTime& time) {
    if (!time.isValid())
        return SvRef::steal(newSV(0));
    const double seconds = static_cast<double>(time.toMSecsSinceEpoch()) / 1000.0;
    return valueOrThrow(callOwn(aTHX_ "tamrix::_time", {SvRef::steal(newSVnv(seconds))}));
}

QDateTime fromPerlTime(pTHX_ SV* value) {
    if (!sv_isobject(value))
        return {};
    HV* const stash = SvSTASH(SvRV(value));
    if (!gv_fetchmeth_pvn(stash, "epoch", 5, 0, 0))
        return {};
    const SvRef seconds = valueOrThrow(callOwn(aTHX_ "tamrix::_epoch", {SvRef::borrow(value)}));
    return QDateTime::fromMSecsSinceEpoch(std::llround(SvNV(seconds.get()) * 1000.0));
}

}  // namespace Tamrix::PerlPlugin
