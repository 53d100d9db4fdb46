#include "platform/spreadsheet/workbook.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "platform/spreadsheet/workbookbuilder.h"

namespace Swinder {
namespace {

using namespace Test;

/// In place of the error text.
const std::string loaded = "loaded";

class WorkbookTest : public testing::Test {
protected:
    ~WorkbookTest() override { std::filesystem::remove(m_path); }

    /// Why the file can't be loaded.
    std::string load(const std::string& file) {
        std::ofstream(m_path, std::ios::binary | std::ios::trunc) << file;
        return workbook.load(m_path.c_str()) ? loaded : workbook.errorText();
    }

    std::string load(const char* path) {
        return workbook.load(path) ? loaded : workbook.errorText();
    }

    static std::string textOf(const UString& text) {
        std::string result;
        for (int i = 0; i < text.length(); ++i) {
            const std::uint16_t unit = text.data()[i];
            result += unit < 0x80 ? std::string(1, static_cast<char>(unit))
                                  : "<" + std::to_string(unit) + ">";
        }
        return result;
    }

    /// The kind of a cell's value and the value.
    std::string at(unsigned column, unsigned row, unsigned sheet = 0) {
        const Cell* const cell = workbook.sheet(sheet)->cell(column, row, false);
        if (!cell)
            return "unused";
        const Value value = cell->value();
        char number[32];
        std::snprintf(number, sizeof number, "%g", value.asFloat());
        switch (value.type()) {
            case Value::Empty:
                return "empty";
            case Value::Boolean:
                return value.asBoolean() ? "boolean true" : "boolean false";
            case Value::Integer:
                return "integer " + std::to_string(value.asInteger());
            case Value::Float:
                return "float " + std::string(number);
            case Value::String:
                return "text " + textOf(value.asString());
            case Value::RichText:
                return "rich " + textOf(value.asString());
            case Value::Error:
                return "error " + std::to_string(value.asInteger());
        }
        return "?";
    }

    Workbook workbook{nullptr};

private:
    std::filesystem::path m_path =
        std::filesystem::temp_directory_path() / ("workbook" + std::to_string(::getpid()));
};

constexpr const char* folder = TAMRIX_TEST_SOURCE_DIR "/tests/platform/spreadsheet/data/";

TEST_F(WorkbookTest, ReadsFilesOfRealPrograms) {
    const std::string data = folder;
    ASSERT_EQ(load((data + "tables-perl.xls").c_str()), loaded);
    ASSERT_EQ(workbook.sheetCount(), 3U);
    EXPECT_EQ(textOf(workbook.sheet(1)->name()), "<1041>lad 2");
    EXPECT_EQ(at(3, 3, 1), "float 44197.5");
    EXPECT_EQ(at(3, 5, 1), "integer 3");
    EXPECT_EQ(at(2, 6, 1), "unused");
    // These go over several records, in both widths.
    for (unsigned row = 1; row <= 60; ++row) {
        std::string expected = "text " + std::to_string(row) + ":";
        for (unsigned i = 0; i < 200 + row; ++i)
            expected += row % 2 ? "x" : "<1078>";
        EXPECT_EQ(at(0, row, 2), expected);
    }

    ASSERT_EQ(load((data + "tables-office.xls").c_str()), loaded);
    ASSERT_EQ(workbook.sheetCount(), 2U);
    const char* const results[] = {"text result", "integer 3",    "text a<1078>",
                                   "text ",       "boolean true", "error 7",
                                   "rich plain",  "integer 0",    "float 44197.5"};
    for (unsigned row = 0; row < std::size(results); ++row)
        EXPECT_EQ(at(1, row, 1), results[row]);
    EXPECT_EQ(workbook.sheet(2), nullptr);
}

TEST_F(WorkbookTest, ReadsEveryKindOfCell) {
    const std::string label = u16(2) + '\0' + "ab";
    const std::string wide = u16(2) + '\1' + u16('a') + u16(0x436);
    const auto result = [](char kind, char value) {
        return std::string(1, kind) + '\0' + value + std::string(3, '\0') + "\xff\xff" +
               std::string(8, '\0');
    };
    const struct {
        std::string cells;
        const char* expected;
    } rows[] = {
        {cell(0x203, 0, 0, f64(1.5)), "float 1.5"},
        {cell(0x203, 0, 0, f64(-2147483648.0)), "integer -2147483648"},
        {cell(0x203, 0, 0, f64(2147483648.0)), "float 2.14748e+09"},
        {cell(0x27e, 0, 0, u32(0xfffffff2)), "integer -4"},
        {cell(0x27e, 0, 0, u32(700 << 2 | 3)), "integer 7"},
        {cell(0x27e, 0, 0, u32(725 << 2 | 3)), "float 7.25"},
        {cell(0x27e, 0, 0, u32(0x3ff80000)), "float 1.5"},
        {cell(0x27e, 0, 0, u32(0x3ff80001)), "float 0.015"},
        {record(0xbd, u16(0) + u16(0) + u16(9) + u32(6) + u16(9) + u32(10) + u16(1)), "integer 1"},
        {cell(0x204, 0, 0, label), "text ab"},
        {cell(0x204, 0, 0, wide), "text a<1078>"},
        {cell(0xd6, 0, 0, label + u16(0)), "rich ab"},
        {cell(0x205, 0, 0, "\1\0"s), "boolean true"},
        {cell(0x205, 0, 0, "\x2a\1"s), "error 42"},
        {cell(0x006, 0, 0, f64(0.25) + u32(0)), "float 0.25"},
        {cell(0x206, 0, 0, f64(2.5) + u32(0)), "float 2.5"},
        {cell(0x406, 0, 0, f64(3.5) + u32(0)), "float 3.5"},
        {cell(0x406, 0, 0, result(0, 0)) + record(0x207, label), "text ab"},
        {cell(0x006, 0, 0, result(1, 1)), "boolean true"},
        {cell(0x006, 0, 0, result(2, 7)), "error 7"},
        {cell(0x006, 0, 0, result(3, 0)), "text "},
        {cell(0x006, 0, 0, result(0, 0)) + record(0x207, label), "text ab"},
        {cell(0x006, 0, 0, result(0, 0)) + record(0x4bc, "x") + record(0x207, wide),
         "text a<1078>"},
        {cell(0x006, 0, 0, result(0, 0)) + record(0x207, u16(3) + '\0' + "ab") +
             record(0x3c, "\1c\0"s),
         "text abc"},
        {cell(0x201, 0, 0, ""), "unused"},
        {beginning(0x20) + cell(0x203, 0, 0, f64(1)) + ending(), "unused"},
        {cell(0x203, 0, 0, f64(1)) + cell(0x203, 1, 0, f64(2)) + cell(0x203, 0, 0, f64(3)),
         "integer 3"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(load(compoundFile(workbookStream(row.cells))), loaded) << row.expected;
        EXPECT_EQ(at(0, 0), row.expected);
    }
}

TEST_F(WorkbookTest, ReadsSharedTextsOverSeveralRecords) {
    const std::string strings =
        // The width changes in the second record; font runs and a pronunciation follow the text.
        record(0xfc, u32(3) + u32(3) + u16(4) + '\x0c' + u16(1) + u32(3) + "ab") +
        record(0x3c, "\1"s + u16(0x436) + u16('d') + u16(0)) +
        record(0x3c, u16(0) + "pho" + u16(1) + '\0') +
        // A text may begin just at the border.
        record(0x3c, "\0x"s + u16(0) + '\0');
    std::string cells;
    for (unsigned row = 0; row < 3; ++row)
        cells += cell(0xfd, row, 0, u32(row));
    ASSERT_EQ(load(compoundFile(workbookStream(cells, strings))), loaded);
    EXPECT_EQ(at(0, 0), "rich ab<1078>d");
    EXPECT_EQ(at(0, 1), "text x");
    EXPECT_EQ(at(0, 2), "text ");
}

TEST_F(WorkbookTest, ReadsEveryLayoutOfACompoundFile) {
    const std::string stream = workbookStream(cell(0x203, 2, 1, f64(5)));
    for (const Layout layout : {Layout::Plain, Layout::Small, Layout::TableInList}) {
        ASSERT_EQ(load(compoundFile(stream, layout)), loaded);
        EXPECT_EQ(at(1, 2), "integer 5");
    }
}

TEST_F(WorkbookTest, ReadsTheStreamOfOtherWriters) {
    const std::string stream = workbookStream(cell(0x203, 2, 1, f64(5)));
    for (const char* name : {"Book", "BOOK", "WORKBOOK"}) {
        ASSERT_EQ(load(compoundFile(stream, Layout::Plain, name)), loaded) << name;
        EXPECT_EQ(at(1, 2), "integer 5");
    }
}

TEST_F(WorkbookTest, TellsThatAPasswordIsNeeded) {
    ASSERT_EQ(load(compoundFile(workbookStream("garbage", record(0x2f, "")))), loaded);
    EXPECT_TRUE(workbook.isPasswordProtected());
    EXPECT_EQ(workbook.sheetCount(), 0U);
}

TEST_F(WorkbookTest, RefusesDamagedFiles) {
    const std::string sound = compoundFile(workbookStream(""));
    const std::string small = compoundFile(workbookStream(""), Layout::Small);
    const std::string listed = compoundFile(workbookStream(""), Layout::TableInList);
    const auto with = [](std::string file, std::size_t offset, const std::string& bytes) {
        return file.replace(offset, bytes.size(), bytes);
    };
    const auto withCells = [](const std::string& cells, const std::string& globals = "") {
        return compoundFile(workbookStream(cells, globals));
    };
    constexpr std::size_t table = 512;
    constexpr std::size_t directory = 1024;
    const std::string twoSheets = boundSheet(66, "A") + boundSheet(66, "B");
    const struct {
        std::string file;
        const char* error;
    } rows[] = {
        {"", "it is no OLE2 compound file"},
        {sound.substr(0, 100), "the header of the compound file is damaged"},
        {with(sound, 30, u16(40)), "the compound file has sectors of an unknown size"},
        {with(sound, 48, u32(900)), "a chain leads out of the compound file (sector 900)"},
        {with(sound, table + 4, u32(1)), "a chain of sectors has no end (sector 1)"},
        {with(sound, table + 16, u32(0xfffffffe)),
         "a chain of sectors ends before its stream (sector 4294967294)"},
        {with(sound, directory + 128, "V"), "the compound file holds no workbook"},
        {with(sound, directory + 128, "V").replace(directory + 128 + 68, 4, u32(1)),
         "the folder of the compound file leads in a circle"},
        {with(sound, directory + 128 + 120, u32(0x7fffffff)),
         "a stream is larger than the compound file"},
        {sound.substr(0, 5000), "it ends too early"},
        {with(small, directory + 120, u32(8)), "a stream is larger than what holds it"},
        {with(small, 32, u16(60)), "the compound file has small sectors of an unknown size"},
        {with(listed, 3 * 512 + 0, u32(0xffffffff)).replace(3 * 512 + 508, 4, u32(2)),
         "the list of allocation tables has no end (sector 2)"},

        {compoundFile(beginning(5, 0x0500), Layout::Plain, "Book"),
         "it is a workbook of Excel 5 or 95; only Excel 97 and later are read"},
        {compoundFile(beginning(5, 0x0700)),
         "a part of the workbook is of another version (offset 0 of the workbook stream)"},
        {record(0x0409, std::string(6, '\0')),
         "it is a sheet of Excel 4 or earlier; only Excel 97 and later are read"},
        {withCells(beginning(0x10)), "it ends too early"},
        {withCells(cell(0xfd, 0, 0, u32(0))),
         "a cell's shared text doesn't exist (offset 57 of the workbook stream)"},
        {withCells(cell(0x203, 0, 300, f64(1))),
         "a cell lies beyond the last column (offset 57 of the workbook stream)"},
        {withCells(record(0xbd, u16(0) + u16(0) + std::string(6, '\0') + u16(7))),
         "a row of numbers has a wrong size (offset 57 of the workbook stream)"},
        {withCells(cell(0x204, 0, 0, u16(9) + '\0' + "ab")), "a text is longer than its record"},
        {withCells("", record(0xfc, u32(1) + u32(1) + u16(1) + "\1x")),
         "a character is cut in two"},
        {withCells("", record(0xfc, u32(1) + u32(0xffffffff) + u16(0) + '\x04' + u32(0xffffffff))),
         "a record ends too early"},
        {compoundFile(beginning(5) + twoSheets + ending() + beginning(0x10) + ending()),
         "a part of the workbook has no beginning (offset 66 of the workbook stream)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(load(row.file), row.error);
        EXPECT_EQ(workbook.sheetCount(), 0U);
    }
    // The sheets of two entries are the same one.
    const auto place = static_cast<std::uint32_t>((beginning(5) + twoSheets + ending()).size());
    EXPECT_EQ(load(compoundFile(beginning(5) + boundSheet(place, "A") + boundSheet(place, "B") +
                                ending() + beginning(0x10) + ending())),
              "two sheets overlap (offset " + std::to_string(place) + " of the workbook stream)");
    EXPECT_EQ(load("/dev/zero"), "it is no regular file");
    EXPECT_EQ(load("/nonexistent"), "No such file or directory");
}

TEST(Sheet, CreatesCellsOnDemand) {
    Sheet sheet((UString()));
    ASSERT_TRUE(sheet.setValue(1, 5, Value::fromNumber(1)));
    ASSERT_TRUE(sheet.setValue(0, 5, Value::fromNumber(2)));
    Cell* const first = sheet.cell(0, 5, false);
    Cell* const created = sheet.cell(7, 0, true);
    ASSERT_TRUE(first && created);
    EXPECT_EQ(created->value().type(), Value::Empty);
    EXPECT_EQ(sheet.cell(7, 0, false), created);
    EXPECT_EQ(sheet.cell(0, 5, true), first);
    EXPECT_EQ(sheet.cell(Sheet::maxColumns, 0, true), nullptr);
    EXPECT_FALSE(sheet.setValue(0, Sheet::maxRows, Value()));
}

}  // namespace
}  // namespace Swinder
