#include "base/textescape.h"

namespace Tamrix {

namespace {

/// Whether a code unit can't stand in a text by itself: half of a surrogate pair.
bool isLoneSurrogate(const QString& text, int index) {
    const QChar c = text.at(index);
    if (c.isHighSurrogate())
        return index + 1 >= text.size() || !text.at(index + 1).isLowSurrogate();
    return c.isLowSurrogate() && (index == 0 || !text.at(index - 1).isHighSurrogate());
}

bool isTerminalControl(const QString& text, int index) {
    const ushort unit = text.at(index).unicode();
    if (unit == '\t' || unit == '\n')
        return false;
    // Besides the C0 range, terminals obey the C1 range, whose 0x9b begins a sequence by itself.
    return unit < 0x20 || (unit >= 0x7f && unit <= 0x9f) || isLoneSurrogate(text, index);
}

bool isForbiddenInXml(const QString& text, int index) {
    const ushort unit = text.at(index).unicode();
    if (unit == '\t' || unit == '\n' || unit == '\r')
        return false;
    return unit < 0x20 || unit >= 0xfffe || isLoneSurrogate(text, index);
}

/// Whether a lone surrogate stands for a byte: see nativebytes.h.
bool isNativeByte(ushort unit) {
    return unit >= 0xdc80 && unit <= 0xdcff;
}

/// Replaces the code units for which `isBad` holds by \xNN or \uNNNN.
template <typename Predicate>
QString escaped(const QString& text, Predicate isBad) {
    int index = 0;
    while (index < text.size() && !isBad(text, index))
        ++index;
    if (index == text.size())
        return text;

    QString result = text.left(index);
    for (; index < text.size(); ++index) {
        const ushort unit = text.at(index).unicode();
        if (!isBad(text, index))
            result += text.at(index);
        else if (unit < 0x100 || isNativeByte(unit))
            result += QStringLiteral("\\x%1").arg(unit & 0xff, 2, 16, QLatin1Char('0'));
        else
            result += QStringLiteral("\\u%1").arg(unit, 4, 16, QLatin1Char('0'));
    }
    return result;
}

}  // namespace

QString escapedForTerminal(const QString& text) {
    return escaped(text, isTerminalControl);
}

QString escapedForXml(const QString& text) {
    return escaped(text, isForbiddenInXml);
}

}  // namespace Tamrix
