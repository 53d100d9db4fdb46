#include <QFileInfo>
#include <algorithm>
#include <array>

#include "shared/testdata/testdataset.h"
#include "shared/testdata/tsvtestdataset.h"
#include "shared/tsvparser/tsvparser.h"

namespace Tamrix {

namespace {

constexpr char noSeparator = '\0';

/// Finds out what the first lines of a text are divided by.
char sniffedSeparator(TsvParser* parser) {
    struct Candidate {
        char separator;
        int count;
    };
    constexpr int unknown = -2;
    Candidate comma{',', unknown};
    Candidate semicolon{';', unknown};
    Candidate tab{'\t', unknown};
    const std::array<Candidate*, 3> candidates = {&comma, &semicolon, &tab};

    // 1. Up to three lines, and
    // 2. the number of each separator that they agree on.
    for (int number = 0; number < 3; ++number) {
        const QString line = parser->nextLine();
        if (line.isEmpty())
            break;
        for (Candidate* candidate : candidates) {
            const int count = TsvParser::countSeparator(line, candidate->separator);
            const bool agrees = candidate->count == unknown || candidate->count == count;
            candidate->count = agrees && count >= 1 ? count : -1;
        }
    }
    // 3. None fits.
    if (std::all_of(candidates.begin(), candidates.end(),
                    [](const Candidate* candidate) { return candidate->count < 0; }))
        return noSeparator;
    // 4. The most frequent one: of equals the comma, then the semicolon.
    if (semicolon.count > comma.count)
        return semicolon.count >= tab.count ? semicolon.separator : tab.separator;
    return tab.count > comma.count ? tab.separator : comma.separator;
}

}  // namespace

TestDataSet* TestDataSet::createTestDataSet(const QString& path) {
    // 1. The suffix, in which case matters,
    const QString suffix = QFileInfo(path).suffix();
    // 2. tells spreadsheets.
    if (suffix == QLatin1String("xls") || suffix == QLatin1String("xlsx"))
        return createTestDataSetExcel(path, QString(QLatin1String("")));
    // 3. Anything else is text, which is looked at
    TsvParser parser(path);
    char separator = sniffedSeparator(&parser);
    // 4. unless the suffix says it all.
    if (suffix == QLatin1String("tsv"))
        separator = '\t';
    else if (suffix == QLatin1String("csv") && separator == noSeparator)
        separator = ',';
    // 5. The parser begins again.
    return separator == noSeparator ? nullptr : new TsvTestDataSet(&parser, separator);
}

}  // namespace Tamrix
