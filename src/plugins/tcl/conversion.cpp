#include "plugins/tcl/conversion.h"

namespace Tamrix::TclPlugin {

namespace {

void append(QByteArray* bytes, uint code) {
    // A NUL ends no text of Tcl: it takes two bytes.
    if (code > 0 && code < 0x80) {
        bytes->append(static_cast<char>(code));
        return;
    }
    const int further = code < 0x800 ? 1 : 2;
    constexpr uint leads[] = {0xC0, 0xE0};
    bytes->append(static_cast<char>(leads[further - 1] | (code >> (6 * further))));
    for (int shift = 6 * (further - 1); shift >= 0; shift -= 6)
        bytes->append(static_cast<char>(0x80 | ((code >> shift) & 0x3F)));
}

/// How many bytes follow the first one of a character, -1 for a byte that is none.
int followersOf(unsigned char lead) {
    if (lead < 0x80)
        return 0;
    if (lead >= 0xC0 && lead < 0xE0)
        return 1;
    if (lead >= 0xE0 && lead < 0xF0)
        return 2;
    return lead >= 0xF0 && lead < 0xF8 ? 3 : -1;
}

}  // namespace

QByteArray toTclBytes(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar unit : text)
        append(&bytes, unit.unicode());
    return bytes;
}

QByteArray toTclSource(QString text) {
    return toTclBytes(text.replace(QLatin1String("\r\n"), QLatin1String("\n"))
                          .replace(QLatin1Char('\r'), QLatin1Char('\n')));
}

QString fromTclBytes(std::string_view bytes) {
    QString text;
    text.reserve(static_cast<int>(bytes.size()));
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const auto lead = static_cast<unsigned char>(bytes[index]);
        const int further = followersOf(lead);
        // Like Tcl, a byte that begins no character is one by itself.
        bool isWhole = further >= 0 && index + static_cast<std::size_t>(further) < bytes.size();
        uint code = further > 0 ? lead & (0x3Fu >> further) : lead;
        for (int next = 1; isWhole && next <= further; ++next) {
            const auto byte = static_cast<unsigned char>(bytes[index + static_cast<size_t>(next)]);
            isWhole = (byte & 0xC0) == 0x80;
            code = (code << 6) | (byte & 0x3F);
        }
        if (!isWhole || code > QChar::LastValidCodePoint) {
            text += QChar(lead);
            continue;
        }
        index += static_cast<std::size_t>(further);
        if (QChar::requiresSurrogates(code))
            text.append(QChar::highSurrogate(code)).append(QChar::lowSurrogate(code));
        else
            text += QChar(code);
    }
    return text;
}

TclRef toTcl(const QString& text) {
    const QByteArray bytes = toTclBytes(text);
    return TclRef(Tcl_NewStringObj(bytes.constData(), bytes.size()));
}

TclRef toTcl(const QStringList& texts) {
    TclRef list(Tcl_NewListObj(0, nullptr));
    for (const QString& text : texts)
        Tcl_ListObjAppendElement(nullptr, list.get(), toTcl(text).get());
    return list;
}

TclRef toTcl(const QDateTime& time) {
    if (!time.isValid())
        return TclRef(Tcl_NewObj());
    const QDateTime local = time.toLocalTime();
    const bool hasMilliseconds = local.time().msec() != 0;
    return toTcl(local.toString(hasMilliseconds ? QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")
                                                : QStringLiteral("yyyy-MM-ddTHH:mm:ss")));
}

std::string_view bytesOf(Tcl_Obj* value) {
    int length = 0;
    const char* const bytes = Tcl_GetStringFromObj(value, &length);
    return {bytes, static_cast<std::size_t>(length)};
}

QString textOf(Tcl_Obj* value) {
    return fromTclBytes(bytesOf(value));
}

}  // namespace Tamrix::TclPlugin
