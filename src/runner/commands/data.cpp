// "tamrixrunner data": the table of a test data file, as scripts see it.

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <algorithm>
#include <vector>

#include "base/textescape.h"
#include "runner/commands/command.h"
#include "runner/processes/terminal.h"
#include "shared/testdata/testdata.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix {

namespace {

enum class TableFormat { Table, Csv, Json };

struct DataSettings {
    QString file;
    /// Of a spreadsheet; empty for its first one.
    QString sheet;
    TableFormat format = TableFormat::Table;
};

Outcome<> readFormat(const QStringList& values, DataSettings& settings) {
    static const QMap<QString, TableFormat> formats = {
        {"table", TableFormat::Table}, {"csv", TableFormat::Csv}, {"json", TableFormat::Json}};
    const auto format = formats.constFind(values.constLast());
    if (format == formats.constEnd())
        return wrongUsage(
            QStringLiteral("--as takes table, csv or json, not '%1'").arg(values.constLast()));
    settings.format = *format;
    return {};
}

Outcome<> readArguments(const CommandArguments& arguments, DataSettings& settings) {
    settings.file = arguments.own.constFirst();
    return {};
}

/// The rows of the table with the header as row -1; null for none.
const TestDataRecord* rowOf(const TestDataSet& set, int index) {
    return index < 0 ? set.header() : set.record(index);
}

/// A value on one line of a terminal.
QString cellText(const TestDataRecord& row, int column) {
    QString text = escapedForTerminal(row.valueAsString(column));
    text.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    text.replace(QLatin1Char('\t'), QLatin1String("\\t"));
    return text;
}

/// Characters, not units.
int widthOf(const QString& text) {
    return static_cast<int>(
        std::count_if(text.begin(), text.end(), [](QChar unit) { return !unit.isLowSurrogate(); }));
}

QString padded(const QString& text, int width, QChar fill = QLatin1Char(' ')) {
    return text + QString(std::max(0, width - widthOf(text)), fill);
}

/// Writes each row with the text of `textOf`; false when standard output can't be written.
template <typename TextOf>
bool printRows(const TestDataSet& set, int first, TextOf textOf) {
    constexpr int pieceSize = 1 << 16;
    QByteArray piece;
    for (int index = first; index < set.count(); ++index) {
        if (const TestDataRecord* row = rowOf(set, index))
            piece += textOf(*row);
        if (piece.size() >= pieceSize || index + 1 == set.count()) {
            if (!writeBytes(stdout, piece))
                return false;
            piece.clear();
        }
    }
    return writeBytes(stdout, piece);
}

bool printTable(const TestDataSet& set) {
    std::vector<int> widths;
    for (int index = -1; index < set.count(); ++index) {
        const TestDataRecord* const row = rowOf(set, index);
        const auto count = static_cast<std::size_t>(row ? row->count() : 0);
        widths.resize(std::max(widths.size(), count));
        for (std::size_t column = 0; column < count; ++column)
            widths[column] =
                std::max(widths[column], widthOf(cellText(*row, static_cast<int>(column))));
    }
    QString rule;
    for (const int width : widths)
        rule += padded(QString(), width, QLatin1Char('-')) + QLatin1String("  ");
    return printRows(set, -1, [&](const TestDataRecord& row) {
        QString line;
        for (int column = 0; column < row.count(); ++column)
            line += padded(cellText(row, column), widths[static_cast<std::size_t>(column)]) +
                    QLatin1String("  ");
        if (row.index() < 0)
            line += QLatin1Char('\n') + rule;
        QString trimmed;
        for (const QString& part : line.split(QLatin1Char('\n'))) {
            QString text = part;
            while (text.endsWith(QLatin1Char(' ')))
                text.chop(1);
            trimmed += text + QLatin1Char('\n');
        }
        return trimmed.toLocal8Bit();
    });
}

bool printCsv(const TestDataSet& set) {
    return printRows(
        set, -1, [&](const TestDataRecord& row) { return set.recordAsLine(&row, ',').toUtf8(); });
}

QByteArray jsonRow(const TestDataRecord* row) {
    QJsonArray values;
    for (int column = 0; row && column < row->count(); ++column)
        values.append(row->valueAsString(column));
    return QJsonDocument(values).toJson(QJsonDocument::Compact);
}

bool printJson(const TestDataSet& set) {
    return writeBytes(stdout, "{\"fields\": " + jsonRow(set.header()) + ",\n\"records\": [") &&
           printRows(set, 0,
                     [&](const TestDataRecord& row) {
                         const bool isFirst = &row == set.record(0);
                         return (isFirst ? "\n" : ",\n") + jsonRow(&row);
                     }) &&
           writeBytes(stdout, "\n]}\n");
}

bool printSet(const TestDataSet& set, TableFormat format) {
    switch (format) {
        case TableFormat::Csv:
            return printCsv(set);
        case TableFormat::Json:
            return printJson(set);
        case TableFormat::Table:
            break;
    }
    return printTable(set);
}

int printTestData(const DataSettings& settings) {
    const QString& file = settings.file;
    const QString problem = TestData::unreadableReason(file);
    if (!problem.isEmpty())
        return failWith(QStringLiteral("'%1' can't be read: %2").arg(file, problem));
    const QString suffix = QFileInfo(file).suffix();
    const bool isSpreadsheet = suffix == QLatin1String("xls") || suffix == QLatin1String("xlsx");
    if (!settings.sheet.isEmpty() && !isSpreadsheet)
        return failWith(
            QStringLiteral("'%1' has no sheets: only .xls and .xlsx files have them").arg(file));
    const SharedPtr<TestDataSet> set(isSpreadsheet
                                         ? TestDataSet::createTestDataSetExcel(file, settings.sheet)
                                         : TestDataSet::createTestDataSet(file));
    if (!set && !isSpreadsheet)
        return failWith(
            QStringLiteral("'%1' is no table: its first lines hold no separator (comma, "
                           "semicolon or tab) equally often")
                .arg(file));
    if (!set || !set->header())
        return failWith(QStringLiteral("no table can be read from '%1'").arg(file));
    // Half a table would be taken for the whole one.
    if (!set->isComplete())
        return failWith(
            QStringLiteral("'%1' can't be read as a whole, so nothing of it is printed").arg(file));
    return printSet(*set, settings.format)
               ? ExitSuccess
               : failWith(QStringLiteral("standard output can't be written"));
}

}  // namespace

Command dataCommand() {
    return makeCommand<DataSettings>(
        {{"data", "FILE", "Prints the table of a test data file as scripts see it.", 1, 1},
         {{"sheet", "NAME", "The sheet of a spreadsheet; the first one unless given.", nullptr,
           textTo(&DataSettings::sheet)},
          {"as", "table|csv|json", "How: %1 (the default), csv or json.", "table", readFormat}},
         {},
         readArguments,
         printTestData});
}

}  // namespace Tamrix
