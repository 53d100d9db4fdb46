#include "shared/testdata/exceltestdataset.h"

#include <QFile>
#include <QHash>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>

#include "base/textescape.h"
#include "platform/spreadsheet/workbook.h"

namespace Tamrix {

namespace {

QString toQString(const Swinder::UString& text) {
    return QString(reinterpret_cast<const QChar*>(text.data()), text.length());
}

/// The texts of a sheet's cells. Cells may share a long text, in a few bytes each; so do the texts
/// that are made of it.
class SheetTexts {
public:
    explicit SheetTexts(Swinder::Sheet* sheet) : m_sheet(sheet) {}

    /// What a cell contributes to the table; empty for a cell that isn't there or holds nothing.
    QString at(unsigned column, unsigned row) {
        const Swinder::Cell* const cell = m_sheet->cell(column, row, false);
        if (!cell || cell->value().type() == Swinder::Value::Empty)
            return QString(QLatin1String(""));
        const Swinder::UString text = cell->value().asString();
        if (text.length() < longText)
            return cellToString(cell);
        QString& shared = m_longTexts[text.data()];
        if (shared.isEmpty())
            shared = cellToString(cell);
        return shared;
    }

private:
    static constexpr int longText = 64;

    Swinder::Sheet* m_sheet;
    QHash<const std::uint16_t*, QString> m_longTexts;
};

struct TablePlace {
    unsigned column;
    unsigned row;
};

/// The first cell with a text along the diagonals from the top left corner, of one diagonal the
/// highest.
std::optional<TablePlace> findTable(SheetTexts& texts) {
    constexpr unsigned diagonals = 50;
    for (unsigned diagonal = 0; diagonal < diagonals; ++diagonal) {
        for (unsigned row = 0; row <= diagonal; ++row) {
            if (!texts.at(diagonal - row, row).isEmpty())
                return TablePlace{diagonal - row, row};
        }
    }
    return std::nullopt;
}

Swinder::Sheet* findSheet(Swinder::Workbook& workbook, const QString& name) {
    if (name.isEmpty()) {
        if (workbook.sheetCount() == 0)
            qWarning("no sheets found");
        return workbook.sheet(0);
    }
    for (unsigned index = 0; index < workbook.sheetCount(); ++index) {
        if (toQString(workbook.sheet(index)->name()) == name)
            return workbook.sheet(index);
    }
    std::fprintf(stderr, "tamrixrunner: sheet not found: %s\n",
                 escapedForTerminal(name).toLocal8Bit().constData());
    return nullptr;
}

/// From the table's first cell to the right, as far as there is a text.
TestDataRecord* readHeader(TestDataSet* set, SheetTexts& texts, TablePlace place) {
    auto header = std::make_unique<TestDataRecord>(set, -1);
    for (unsigned column = place.column;; ++column) {
        const QString text = texts.at(column, place.row);
        if (text.isEmpty())
            return header.release();
        header->addValue(text);
    }
}

/// The rows below the header and as wide as it, up to one that is empty.
void readRecords(TestDataSet* set, SheetTexts& texts, TablePlace place) {
    const auto width = static_cast<unsigned>(set->header()->count());
    for (unsigned row = place.row + 1; row < Swinder::Sheet::maxRows; ++row) {
        QVector<QString> values;
        values.reserve(static_cast<int>(width));
        bool isEmpty = true;
        for (unsigned column = 0; column < width; ++column) {
            const QString text = texts.at(place.column + column, row);
            isEmpty = isEmpty && text.isEmpty();
            values.append(text);
        }
        if (isEmpty)
            return;
        set->addRecord(new TestDataRecord(set, set->count(), values));
    }
}

}  // namespace

QString cellToString(const Swinder::Cell* cell) {
    constexpr int precision = 6;
    const Swinder::Value value = cell ? cell->value() : Swinder::Value();
    switch (value.type()) {
        case Swinder::Value::Boolean:
            return QLatin1String(value.asBoolean() ? "true" : "false");
        case Swinder::Value::Integer:
            return QString::number(value.asInteger());
        case Swinder::Value::Float:
            return QString::number(value.asFloat(), 'g', precision);
        case Swinder::Value::String:
        case Swinder::Value::RichText:
            return toQString(value.asString());
        default:
            return QLatin1String("?");
    }
}

ExcelTestDataSet::ExcelTestDataSet(const QString& path, const QString& sheet)
    : TestDataSet(path, '$', true) {
    // 1. Load the file.
    const QByteArray localPath = QFile::encodeName(path);
    Swinder::Workbook workbook(nullptr);
    if (!workbook.load(localPath.constData())) {
        setIncomplete();
        qWarning("Couldn't load %s", localPath.constData());
        qWarning("%s: %s", localPath.constData(), workbook.errorText().c_str());
        return;
    }
    // 2. Without its password it tells nothing.
    if (workbook.isPasswordProtected()) {
        setIncomplete();
        qWarning("passwd protected");
        return;
    }
    // 3. Choose the sheet.
    Swinder::Sheet* const chosen = findSheet(workbook, sheet);
    if (!chosen) {
        setIncomplete();
        return;
    }
    // 4. Find the table's top left cell.
    SheetTexts texts(chosen);
    const std::optional<TablePlace> place = findTable(texts);
    if (!place) {
        qWarning("no table found");
        return;
    }
    // 5. The header,
    setHeader(readHeader(this, texts, *place));
    // 6. and the records.
    readRecords(this, texts, *place);
}

}  // namespace Tamrix
