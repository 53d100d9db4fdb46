#include "plugins/tcl/conversion.h"

#include "interpreter/language/looseutf8.h"

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
    QByteArray text(bytes.data(), static_cast<int>(bytes.size()));
    text.replace("\xC0\x80", QByteArray(1, '\0'));
    return fromLooseUtf8(text.constData(), text.size());
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
