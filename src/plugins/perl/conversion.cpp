#include "plugins/perl/conversion.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "interpreter/language/scripterrorset.h"
#include "plugins/perl/guardedcall.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Perl writes surrogates as it writes any other character, which QString's UTF-8 never does.
QByteArray withSurrogates(pTHX_ const QString& text) {
    QByteArray bytes;
    for (const uint character : codePoints(text)) {
        U8 buffer[UTF8_MAXBYTES + 1];
        const U8* const end = uvchr_to_utf8(buffer, character);
        bytes.append(reinterpret_cast<const char*>(buffer), static_cast<int>(end - buffer));
    }
    return bytes;
}

/// Character by character: for what is no UTF-8 for others than Perl.
QString textOfPerlCharacters(pTHX_ const char* bytes, STRLEN size) {
    QString text;
    const U8* place = reinterpret_cast<const U8*>(bytes);
    const U8* const end = place + size;
    while (place < end) {
        STRLEN length = 0;
        const UV character =
            utf8n_to_uvchr(place, static_cast<STRLEN>(end - place), &length, UTF8_ALLOW_ANY);
        place += length == 0 ? 1 : length;
        if (character > 0x10FFFF)
            text += QChar(QChar::ReplacementCharacter);
        else if (character > 0xFFFF)
            text += QString::fromUcs4(std::array{static_cast<char32_t>(character)}.data(), 1);
        else
            text += QChar(static_cast<ushort>(character));
    }
    return text;
}

QString className(pTHX_ SV* value) {
    return QString::fromUtf8(sv_reftype(SvRV(value), 1));
}

}  // namespace

std::vector<uint> codePoints(const QString& text) {
    std::vector<uint> codes;
    codes.reserve(static_cast<std::size_t>(text.size()));
    for (int index = 0; index < text.size(); ++index) {
        const QChar unit = text.at(index);
        const QChar next = index + 1 < text.size() ? text.at(index + 1) : QChar();
        const bool isPair = unit.isHighSurrogate() && next.isLowSurrogate();
        codes.push_back(isPair ? QChar::surrogateToUcs4(unit, next) : unit.unicode());
        index += isPair ? 1 : 0;
    }
    return codes;
}

SvRef toPerl(pTHX_ const QString& text) {
    const QByteArray bytes = text.isValidUtf16() ? text.toUtf8() : withSurrogates(aTHX_ text);
    SV* const value = newSVpvn(bytes.constData(), static_cast<STRLEN>(bytes.size()));
    if (bytes.size() != text.size())
        SvUTF8_on(value);
    return SvRef::steal(value);
}

QString textOfBytes(pTHX_ const char* bytes, STRLEN size, bool isUtf8) {
    if (!isUtf8)
        return QString::fromLatin1(bytes, static_cast<int>(size));
    if (is_strict_utf8_string(reinterpret_cast<const U8*>(bytes), size))
        return QString::fromUtf8(bytes, static_cast<int>(size));
    return textOfPerlCharacters(aTHX_ bytes, size);
}

QString textOf(pTHX_ SV* value) {
    SvRef made;
    if (SvGMAGICAL(value) || SvAMAGIC(value)) {
        CodeEnd end = callOwn(aTHX_ "tamrix::_text", {SvRef::borrow(value)});
        if (end.ending == Ending::Left)
            throwEnd(std::move(end));
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
