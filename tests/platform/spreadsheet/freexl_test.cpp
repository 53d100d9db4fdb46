#include <freexl.h>
#include <gtest/gtest.h>

#include <QString>

#include "platform/spreadsheet/workbook.h"

namespace Swinder {
namespace {

std::string utf8(const UString& text) {
    return QString(reinterpret_cast<const QChar*>(text.data()), text.length()).toStdString();
}

/// Compares the cell with what FreeXL made of it. False where FreeXL can't tell: it has nothing for
/// formulas and errors, and dates as texts.
bool agrees(Cell* cell, const FreeXL_CellValue& other) {
    const Value value = cell ? cell->value() : Value();
    switch (other.type) {
        case FREEXL_CELL_INT:
            // It has no booleans either.
            EXPECT_EQ(value.type() == Value::Boolean ? int(value.asBoolean()) : value.asFloat(),
                      other.value.int_value);
            return true;
        case FREEXL_CELL_DOUBLE:
            EXPECT_EQ(value.asFloat(), other.value.double_value);
            return true;
        case FREEXL_CELL_TEXT:
        case FREEXL_CELL_SST_TEXT:
            EXPECT_EQ(utf8(value.asString()), other.value.text_value);
            return true;
        default:
            return false;
    }
}

TEST(Workbook, AgreesWithASecondReader) {
    const struct {
        const char* file;
        int comparable;
    } rows[] = {{"tables-perl.xls", 83}, {"tables-office.xls", 28}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        const std::string path =
            std::string(TAMRIX_TEST_SOURCE_DIR "/tests/platform/spreadsheet/data/") + row.file;
        Workbook workbook(nullptr);
        ASSERT_TRUE(workbook.load(path.c_str()));
        const void* other = nullptr;
        ASSERT_EQ(freexl_open(path.c_str(), &other), FREEXL_OK);
        unsigned sheets = 0;
        freexl_get_info(other, FREEXL_BIFF_SHEET_COUNT, &sheets);
        EXPECT_EQ(workbook.sheetCount(), sheets);
        int compared = 0;
        for (unsigned sheet = 0; sheet < sheets; ++sheet) {
            const char* name = "";
            freexl_get_worksheet_name(other, static_cast<unsigned short>(sheet), &name);
            EXPECT_EQ(utf8(workbook.sheet(sheet)->name()), name);
            freexl_select_active_worksheet(other, static_cast<unsigned short>(sheet));
            unsigned rowCount = 0;
            unsigned short columnCount = 0;
            freexl_worksheet_dimensions(other, &rowCount, &columnCount);
            for (unsigned line = 0; line < rowCount; ++line) {
                for (unsigned short column = 0; column < columnCount; ++column) {
                    SCOPED_TRACE(std::to_string(sheet) + ": " + std::to_string(column) + ", " +
                                 std::to_string(line));
                    FreeXL_CellValue value = {};
                    ASSERT_EQ(freexl_get_cell_value(other, line, column, &value), FREEXL_OK);
                    compared += agrees(workbook.sheet(sheet)->cell(column, line, false), value);
                }
            }
        }
        freexl_close(other);
        EXPECT_EQ(compared, row.comparable);
    }
}

}  // namespace
}  // namespace Swinder
