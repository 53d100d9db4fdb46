#include "interpreter/language/literals.h"

namespace Tamrix {

namespace {

constexpr struct {
    char character;
    const char* written;
} shortEscapes[] = {{'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}};

/// Whether the unit is all of a character, or a half that stands beside its other one.
bool isWhole(const QString& text, int index) {
    const QChar unit = text.at(index);
    if (unit.isHighSurrogate())
        return index + 1 < text.size() && text.at(index + 1).isLowSurrogate();
    return !unit.isLowSurrogate() || (index > 0 && text.at(index - 1).isHighSurrogate());
}

/// Whether an editor shows the character as what it is.
bool isPlain(const QString& text, int index) {
    const QChar unit = text.at(index);
    return (unit.isPrint() || unit.isSurrogate()) && isWhole(text, index);
}

QString escaped(const QString& text, int index, const LiteralStyle& style) {
    const QChar unit = text.at(index);
    if (unit == style.quote || unit == '\\' || QLatin1String(style.furtherEscaped).contains(unit))
        return QString('\\') + unit;
    for (const auto& row : shortEscapes) {
        if (unit == QLatin1Char(row.character))
            return QLatin1String(row.written);
    }
    if (isPlain(text, index))
        return unit;
    const bool isLost = unit.isSurrogate() && !style.hasHalves;
    const QChar written = isLost ? QChar(QChar::ReplacementCharacter) : unit;
    return QString(QLatin1String(style.numbered))
        .arg(written.unicode(), style.digits, 16, QLatin1Char('0'));
}

}  // namespace

QString literalOf(const QString& text, const LiteralStyle& style) {
    QString literal = style.quote;
    for (int index = 0; index < text.size(); ++index)
        literal += escaped(text, index, style);
    return literal + style.quote;
}

bool isPlainText(const QString& text) {
    for (int index = 0; index < text.size(); ++index) {
        if (!isPlain(text, index))
            return false;
    }
    return true;
}

}  // namespace Tamrix
