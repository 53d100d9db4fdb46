#include "plugins/perl/literal.h"

#include <QVector>
#include <algorithm>

#include "interpreter/language/literals.h"

namespace Tamrix::PerlPlugin {

namespace {

QString inDoubleQuotes(const QString& text) {
    return literalOf(text, {'"', "$@", numberedCharacter, 1});
}

}  // namespace

QString literal(const QString& text) {
    if (!std::all_of(text.begin(), text.end(), [](QChar each) { return each.isPrint(); }))
        return inDoubleQuotes(text);
    QString inner = text;
    inner.replace('\\', QStringLiteral("\\\\")).replace('\'', QStringLiteral("\\'"));
    return '\'' + inner + '\'';
}

QString asciiLiteral(const QString& text) {
    const auto isAscii = [](uint each) { return each < 0x80; };
    const QVector<uint> codes = inDoubleQuotes(text).toUcs4();
    if (std::all_of(codes.begin(), codes.end(), isAscii))
        return literal(text);
    QString literal;
    for (const uint code : codes)
        literal += isAscii(code) ? QString(QChar(code))
                                 : QString(QLatin1String(numberedCharacter)).arg(code, 0, 16);
    return literal;
}

}  // namespace Tamrix::PerlPlugin
