#include "plugins/tcl/conversion.h"

#include "interpreter/language/looseutf8.h"

namespace Tamrix::TclPlugin {

QByteArray toTclBytes(const QString& text) {
    // No unit of UTF-16 has more than three bytes; a NUL, which ends no text of Tcl, has two.
    QByteArray bytes(3 * text.size(), Qt::Uninitialized);
    char* end = bytes.data();
    for (const QChar unit : text)
        end += Tcl_UniCharToUtf(unit.unicode(), end);
    bytes.truncate(static_cast<int>(end - bytes.data()));
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
