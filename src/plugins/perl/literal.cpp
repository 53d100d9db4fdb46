#include "plugins/perl/literal.h"

#include <algorithm>

#include "plugins/perl/conversion.h"

namespace Tamrix::PerlPlugin {

namespace {

QString inSingleQuotes(QString text) {
    text.replace('\\', QStringLiteral("\\\\")).replace('\'', QStringLiteral("\\'"));
    return '\'' + text + '\'';
}

QString escaped(uint character) {
    switch (character) {
        case '\n':
            return QStringLiteral("\\n");
        case '\r':
            return QStringLiteral("\\r");
        case '\t':
            return QStringLiteral("\\t");
        default:
            return QStringLiteral("\\x{%1}").arg(character, 0, 16);
    }
}

template <typename StandsAsItIs>
QString literalOf(const QString& text, StandsAsItIs standsAsItIs) {
    const std::vector<uint> codes = codePoints(text);
    if (std::all_of(codes.begin(), codes.end(), standsAsItIs))
        return inSingleQuotes(text);
    QString inner;
    for (const uint each : codes) {
        if (!standsAsItIs(each)) {
            inner += escaped(each);
            continue;
        }
        // These mean something between double quotes.
        if (each == '"' || each == '\\' || each == '$' || each == '@')
            inner += '\\';
        inner += QString::fromUcs4(&each, 1);
    }
    return '"' + inner + '"';
}

}  // namespace

QString literal(const QString& text) {
    return literalOf(text, [](uint each) { return QChar::isPrint(each); });
}

QString asciiLiteral(const QString& text) {
    return literalOf(text, [](uint each) { return each >= ' ' && each <= '~'; });
}

}  // namespace Tamrix::PerlPlugin
