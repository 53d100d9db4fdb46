// Delimited text. An input is read as
//
//     1 byte   the separator
//     rest     the file
//
// The block reader must give what the plain reader of the rules gives.

#include "shared/tsvparser/tsvparser.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "shared/tsvparser/delimitedtext.h"
#include "shared/tsvparser/fields.h"
#include "shared/tsvparser/literalreader.h"

using namespace Tamrix;

namespace {

template <typename Unit>
void compareLines(const DelimitedText& text, const Unit* units, std::size_t size, char separator,
                  LiteralReader* literal) {
    LineScanner<Unit> scanner(units, size, separator, 0);
    for (TextLine line; scanner.next(&line);) {
        const QString expected = literal->nextLine();
        fuzzRequire(text.text(line) == expected, "the lines agree");
        QStringList fields;
        const Unit* const begin = units + line.begin;
        splitFields(begin, begin + line.length, static_cast<Unit>(separator),
                    [&](const Unit* from, const Unit* to) { fields.append(decoded(from, to)); });
        fuzzRequire(fields == LiteralReader::fields(expected, separator), "the fields agree");
        fuzzRequire(line.separators == 0 || fields.size() == static_cast<int>(line.separators) + 1,
                    "the separators are counted");
        TsvParser::countSeparator(expected, separator);
    }
    fuzzRequire(literal->nextLine().isEmpty(), "both end");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    if (size == 0)
        return 0;
    const char separators[] = {',', ';', '\t'};
    const char separator = separators[data[0] % sizeof separators];
    const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size - 1));
    const DelimitedText text(bytes);
    LiteralReader literal(bytes);
    text.visit([&](const auto* units, std::size_t count) {
        compareLines(text, units, count, separator, &literal);
    });
    return 0;
}
