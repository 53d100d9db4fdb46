#include "shared/testdata/tsvtestdataset.h"

#include <cstdio>
#include <memory>

#include "shared/tsvparser/fields.h"
#include "shared/tsvparser/tsvparser.h"

namespace Tamrix {

namespace {

/// Gives the set the row of the parser's last line.
void takeRow(const TsvParser& parser, TestDataSet* set, std::unique_ptr<TestDataRecord> row) {
    if (parser.lineNumber() == 0) {
        set->setHeader(row.release());
        return;
    }
    const int width = set->header() ? set->header()->count() : 0;
    if (row->count() != width) {
        std::fprintf(
            stderr, "Warning: inconsistent format in %s (line %d): Expected %d fields. Got %d.\n",
            parser.name().toLocal8Bit().constData(), parser.lineNumber(), width, row->count());
    }
    set->addRecord(row.release());
}

}  // namespace

void TsvParser::parseRecord(TestDataSet* set, const QString& line, char separator) const {
    if (line.isEmpty())
        return;
    auto row = std::make_unique<TestDataRecord>(set, m_lineNumber - 1);
    const auto* const begin = reinterpret_cast<const char16_t*>(line.utf16());
    splitFields(
        begin, begin + line.size(), static_cast<char16_t>(static_cast<uchar>(separator)),
        [&](const char16_t* from, const char16_t* to) { row->addValue(decoded(from, to)); });
    takeRow(*this, set, std::move(row));
}

TsvTestDataSet::TsvTestDataSet(const QString& path, char separator)
    : TestDataSet(path, separator, false) {
    TsvParser parser(path);
    parse(&parser, separator);
}

TsvTestDataSet::TsvTestDataSet(TsvParser* parser, char separator)
    : TestDataSet(parser->name(), separator, false) {
    parser->rewind();
    parse(parser, separator);
}

void TsvTestDataSet::parse(TsvParser* parser, char separator) {
    if (TsvParser::isScannable(separator)) {
        setText(parser->text());
        TextLine line;
        while (parser->nextLine(separator, &line) && line.length > 0) {
            takeRow(*parser, this,
                    std::make_unique<TestDataRecord>(this, parser->lineNumber() - 1, line));
        }
    } else {
        for (QString line; !(line = parser->nextLine()).isEmpty();)
            parser->parseRecord(this, line, separator);
    }
    if (!parser->isOpen())
        setIncomplete();
    if (!header()) {
        auto* const first = new TestDataRecord(this, -1);
        first->addValue(QStringLiteral("1"));
        setHeader(first);
    }
}

}  // namespace Tamrix
