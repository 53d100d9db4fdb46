#include "plugins/perl/literal.h"

#include <algorithm>

#include "plugins/perl/conversion.h"

namespace Tamrix::PerlPlugin {

namespace {

bool standsAsItIs(uint character, LiteralCharacters characters) {
    return characters == LiteralCharacters::All ? QChar::isPrint(character)
                                                : character >= ' ' && character <= '~';
}

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

}  // namespace

QString literal(const QString& text, LiteralCharacters characters) {
    const std::vector<uint> codes = codePoints(text);
    if (std::all_of(codes.begin(), codes.end(),
                    [&](uint each) { return standsAsItIs(each, characters); }))
        return inSingleQuotes(text);
    QString inner;
    for (const uint each : codes) {
        if (!standsAsItIs(each, characters)) {
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

}  // namespace Tamrix::PerlPlugin
