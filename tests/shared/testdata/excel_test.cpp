#include <gtest/gtest.h>
#include <minizip/unzip.h>
#include <tinyxml.h>

#include <QFile>
#include <QTemporaryDir>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/tinyxmlguard.h"
#include "platform/spreadsheet/workbookbuilder.h"
#include "shared/testdata/excelarchive.h"
#include "shared/testdata/excelxmlpart.h"
#include "shared/testdata/testdataset.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/ziparchive.h"

namespace Tamrix {
namespace {

using namespace Test;

const QByteArray workbookXml =
    "<workbook><sheets><sheet name='A' sheetId='1'/></sheets></workbook>";
const QByteArray stringsXml =
    "<sst><si><t>plain</t></si>"
    "<si><r><t>a</t></r><t xml:space='preserve'> b&amp;</t><r><x/><t>c</t></r><rPh><t>d</t></rPh>"
    "</si><si><r><t>a</t></r><r><t xml:space='preserve'> </t></r><r><t>b</t></r></si></sst>";

QString tableOf(const TestDataSet& set) {
    QString text;
    const auto add = [&text](const TestDataRecord* record) {
        for (int column = 0; record && column < record->count(); ++column)
            text += (column ? "|" : "") + record->valueAsString(column);
        text += "\n";
    };
    if (set.header())
        add(set.header());
    for (int row = 0; row < set.count(); ++row) {
        EXPECT_EQ(set.record(row)->index(), row);
        add(set.record(row));
    }
    return text;
}

/// The table of a sheet, one row a line, and what was written to stderr.
std::pair<QString, QString> read(const QString& path, const QString& sheet = QString()) {
    testing::internal::CaptureStderr();
    const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSetExcel(path, sheet));
    QString messages = QString::fromStdString(testing::internal::GetCapturedStderr());
    if (!set)
        return {"null", messages};
    EXPECT_TRUE(set->isReadOnly());
    EXPECT_EQ(set->dataName(), path);
    return {tableOf(*set), messages};
}

const QString folder = TAMRIX_TEST_SOURCE_DIR "/tests/platform/spreadsheet/data/";

TEST(Excel, ReadsTheSameTableFromEveryWriter) {
    // Numbers of .xls files are told with six digits, those of .xlsx files as they are stored.
    const QString people =
        "name|age|score|note\n"
        "Ada|36|1.5|first & last\n"
        "Jürgen|-7|1234567|Привет\n"
        "|%1|0.1|  spaces  \n";
    const struct {
        const char* file;
        const char* large;
    } rows[] = {{"tables-perl.xls", "1e+10"},
                {"tables-perl.xlsx", "10000000000"},
                {"tables-office.xls", "1e+10"},
                {"tables-office.xlsx", "10000000000"}};
    for (const auto& row : rows) {
        const std::pair expected(people.arg(row.large), QString());
        EXPECT_EQ(read(folder + row.file), expected) << row.file;
        EXPECT_EQ(read(folder + row.file, "People"), expected) << row.file;
        EXPECT_EQ(read(folder + row.file, "people"),
                  std::pair(QString(), QString("tamrixrunner: sheet not found: people\n")));
    }
}

TEST(Excel, FindsATableAwayFromTheCorner) {
    EXPECT_EQ(read(folder + "tables-perl.xls", "Бlad 2").first,
              "key|value\nday|44197.5\nrich|plain\nsum|3\n");
    EXPECT_EQ(read(folder + "tables-perl.xlsx", "Бlad 2").first,
              "|||\n|||\n||key|value\n||day|44197.5\n||rich|plain\n||sum|3\n|||\n"
              "||behind the table|\n");
    EXPECT_EQ(read(folder + "tables-office.xls", "Results").first,
              "kind|result\nnumber|3\ntext|aж\nno text|\ntruth|true\nerror|?\nrich|plain\n"
              "boolean|0\ndate|44197.5\n");
}

TEST(Excel, CellsShareALongText) {
    using namespace Swinder::Test;
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.xls");
    const std::string text(3000, 'x');
    const std::string strings =
        record(0xfc, u32(3) + u32(1) + u16(static_cast<unsigned>(text.size())) + '\0' + text);
    std::string cells;
    for (unsigned row = 0; row < 3; ++row)
        cells += cell(0xfd, row, 0, u32(0));
    ASSERT_TRUE(
        writeFile(path, QByteArray::fromStdString(compoundFile(workbookStream(cells, strings)))));
    const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSetExcel(path, ""));
    ASSERT_EQ(set->count(), 2);
    const QString first = set->record(0)->valueAsString(0);
    EXPECT_EQ(first, QString::fromStdString(text));
    // A few bytes of the file may not become a text each.
    EXPECT_EQ(set->record(1)->valueAsString(0).constData(), first.constData());
}

TEST(Excel, ChoosesTheReaderBySuffix) {
    for (const char* name : {"a.XLS", "a.csv", "xlsx"})
        EXPECT_EQ(read(name).first, "null");
    EXPECT_EQ(read("/nonexistent/a.xls").second,
              "Couldn't load /nonexistent/a.xls\n"
              "/nonexistent/a.xls: No such file or directory\n");
    EXPECT_EQ(read("/nonexistent/a.xlsx").second,
              "tamrixrunner: .xlsx file is corrupt: /nonexistent/a.xlsx can't be opened as an "
              "archive\n");
}

TEST(ExcelXml, ReadsSheets) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.xlsx");
    const struct {
        QByteArray sheet;
        const char* table;
        const char* messages;
    } rows[] = {
        {"<dimension ref='A1:C3'/><sheetData><row r='1'><c r='A1' t='s'><v>0</v></c></row>"
         "<row r='3'><c r='B3' t='s'><v>1</v></c></row></sheetData>",
         // The text that stands directly in the item comes first.
         "plain||\n||\n| b&ac|\n", ""},
        {"<sheetData><row r='2'><c r='B2'><v> 1</v></c><c><v/></c><c r='D2' t='b'><v>1</v></c>"
         "</row></sheetData>",
         "\n| 1||1\n", ""},
        {"<dimension ref='B2'/><sheetData><row><c r='A1'/></row><row/></sheetData>", "\n\n", ""},
        {"<dimension ref='A1:B1'/><sheetData><row r='1'><c r='C1'><v>x</v></c></row>"
         "<row r='2'/></sheetData>",
         "||x\n|\n", ""},
        {"<sheetData><row><c r='A1' t='str'><f>A2</f><v>x</v></c><c t='str'><v>1</v></c>"
         "<c r='C1' t='inlineStr'><is><t>x</t></is></c></row></sheetData>",
         "x| b&ac|\n",
         "tamrixrunner: testData Sheet: cells of the type inlineStr are read as empty, the first "
         "one is C1\n"},
        {"<sheetData><row><c t='s'><v>2</v></c><c><v> </v></c></row></sheetData>", "a b| \n", ""},
        {"<sheetData><row><c t='s'><v>7</v></c><c t='s'><v>8</v></c></row></sheetData>", "|\n",
         "tamrixrunner: testData Sheet: no shared string 7\n"},
        {"<sheetData><row><c t='s'><v>4294967297</v></c></row></sheetData>", "\n",
         "tamrixrunner: testData Sheet: no shared string 4294967297\n"},
        {"<sheetData><row><c t='s'><v>18446744073709551617</v></c></row></sheetData>", "\n",
         "tamrixrunner: testData Sheet: no shared string 18446744073709551617\n"},
        {"<sheetData><row><c t='s'><v>-4294967295</v></c></row></sheetData>", "\n",
         "tamrixrunner: testData Sheet: no shared string -4294967295\n"},
        {"<sheetData><row><c><v>a\r\nb\rc&#13;</v></c></row></sheetData>", "a\nb\nc\r\n", ""},
        {"<sheetData><row r='1048577'/></sheetData>", "",
         "tamrixrunner: testData Sheet: row 1048577 lies beyond the last row\n"},
        {"<sheetData><row><c r='XFE1'/></row></sheetData>", "",
         "tamrixrunner: testData Sheet: XFE1 lies beyond the last column\n"},
        {"<sheetData>\n<row></sheetData>", "",
         "tamrixrunner: testData Sheet: line 2: an end tag of sheetData that ends nothing\n"},
    };
    for (const auto& row : rows) {
        writeArchive(path,
                     {{"xl/workbook.xml", workbookXml},
                      {"xl/sharedStrings.xml", stringsXml},
                      {"xl/worksheets/sheet1.xml", "<worksheet>" + row.sheet + "</worksheet>"}});
        const auto [table, messages] = read(path);
        EXPECT_EQ(table, row.table) << row.sheet.constData();
        EXPECT_EQ(messages, row.messages);
    }
}

TEST(ExcelXml, ReadsElementsWithAPrefix) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.xlsx");
    writeArchive(path,
                 {{"xl/workbook.xml",
                   "<x:workbook xmlns:x='m'><x:sheets>"
                   "<x:sheet name='A' sheetId='1'/></x:sheets></x:workbook>"},
                  {"xl/sharedStrings.xml",
                   "<s:sst><s:si><s:t>a</s:t><s:r><s:t>b</s:t></s:r><o:t>no</o:t></s:si></s:sst>"},
                  {"xl/worksheets/sheet1.xml",
                   "<x:worksheet><x:dimension ref='A1:B1'/><x:sheetData><x:row r='1'>"
                   "<x:c t='s'><x:v>0</x:v></x:c><x:c><o:v>no</o:v><x:v>2</x:v></x:c></x:row>"
                   "<o:row r='2'/></x:sheetData></x:worksheet>"}});
    EXPECT_EQ(read(path), std::pair(QString("ab|2\n"), QString()));
}

TEST(ExcelXml, TellsWhenTheRelationshipsNameAnotherPart) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.xlsx");
    const QByteArray workbook =
        "<workbook><sheets><sheet name='A' sheetId='1' r:id='rId3'/></sheets></workbook>";
    const QByteArray sheet =
        "<worksheet><sheetData><row><c><v>1</v></c></row></sheetData></worksheet>";
    const QString readFrom =
        "tamrixrunner: testData Sheet: sheet 'A' is read from xl/worksheets/sheet1.xml, but the "
        "workbook's relationships name %1 for it\n";
    const struct {
        const char* target;
        QString messages;
    } rows[] = {
        {"worksheets/sheet1.xml", ""},
        {"/xl/worksheets/sheet1.xml", ""},
        {"./worksheets/../worksheets/sheet1.xml", ""},
        {"worksheets/sheet2.xml", readFrom.arg("xl/worksheets/sheet2.xml")},
        {"/sheet.xml", readFrom.arg("sheet.xml")},
    };
    for (const auto& row : rows) {
        writeArchive(path, {{"xl/workbook.xml", workbook},
                            {"xl/_rels/workbook.xml.rels",
                             QByteArray("<Relationships><Relationship Id='rId2' Target='x'/>"
                                        "<Relationship Id='rId3' Target='") +
                                 row.target + "'/></Relationships>"},
                            {"xl/worksheets/sheet1.xml", sheet}});
        EXPECT_EQ(read(path), std::pair(QString("1\n"), row.messages)) << row.target;
    }
    writeArchive(path, {{"xl/workbook.xml", workbook},
                        {"xl/_rels/workbook.xml.rels", "<Relationships>"},
                        {"xl/worksheets/sheet1.xml", sheet}});
    EXPECT_EQ(read(path), std::pair(QString("1\n"), QString()));
}

TEST(ExcelXml, LimitsWhatAFileLeavesOut) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.xlsx");
    const auto readRows = [&path](const QByteArray& rows) {
        writeArchive(
            path, {{"xl/workbook.xml", workbookXml},
                   {"xl/worksheets/sheet1.xml", "<worksheet><dimension ref='A1:XFD9'/><sheetData>" +
                                                    rows + "</sheetData></worksheet>"}});
        testing::internal::CaptureStderr();
        const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSetExcel(path, ""));
        return std::pair(set->count(), testing::internal::GetCapturedStderr());
    };
    EXPECT_EQ(readRows("<row r='1048576'/>"), std::pair(1048575, std::string()));
    EXPECT_EQ(
        readRows(QByteArray("<row/>").repeated(2049)),
        std::pair(2047, std::string("tamrixrunner: testData Sheet: there are more than 33554432 "
                                    "values\n")));
    writeArchive(path, {{"xl/workbook.xml", workbookXml},
                        {"xl/worksheets/sheet1.xml", "<worksheet><sheetData>" +
                                                         QByteArray("<row/>").repeated(1048577) +
                                                         "</sheetData></worksheet>"}});
    EXPECT_EQ(read(path).second,
              "tamrixrunner: testData Sheet: row 1048577 lies beyond the last row\n");
}

TEST(ExcelXml, SaysWhetherTheTableIsComplete) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.xlsx");
    const auto isComplete = [&path](const QByteArray& cell, const QByteArray& strings) {
        writeArchive(path, {{"xl/workbook.xml", workbookXml},
                            {"xl/sharedStrings.xml", strings},
                            {"xl/worksheets/sheet1.xml", "<worksheet><sheetData><row>" + cell +
                                                             "</row></sheetData></worksheet>"}});
        testing::internal::CaptureStderr();
        const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSetExcel(path, ""));
        testing::internal::GetCapturedStderr();
        return set->isComplete();
    };
    EXPECT_TRUE(isComplete("<c t='s'><v>0</v></c>", stringsXml));
    EXPECT_FALSE(isComplete("<c t='s'><v>3</v></c>", stringsXml));
    EXPECT_FALSE(isComplete("<c r='XFE1'/>", stringsXml));
    EXPECT_FALSE(isComplete("<c>", stringsXml));
    EXPECT_FALSE(isComplete("<c/>", "<sst><si>"));
}

TEST(ExcelXml, TellsWhatIsMissing) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.xlsx");
    const struct {
        const char* workbook;
        const char* messages;
    } rows[] = {
        {"<x/>", "tamrixrunner: .xlsx file is corrupt: No <workbook>\n"},
        {"<workbook/>", "tamrixrunner: .xlsx file is corrupt: No <sheets>\n"},
        {"<workbook><sheets/></workbook>", "tamrixrunner: .xlsx file is corrupt: No <sheet>\n"},
        {"<workbook><sheets><sheet/></sheets></workbook>",
         "tamrixrunner: .xlsx file is corrupt: a <sheet> has no sheetId\n"},
        {workbookXml,
         "tamrixrunner: testData Sheet: file is not contained in the archive! "
         "(xl/worksheets/sheet1.xml, the part of sheet 'A')\n"},
    };
    for (const auto& row : rows) {
        writeArchive(path, {{"xl/workbook.xml", row.workbook}});
        EXPECT_EQ(read(path), std::pair(QString(), QString(row.messages)));
    }
    writeArchive(path, {{"xl/sharedStrings.xml", "<sst>"}});
    EXPECT_EQ(read(path).second,
              "tamrixrunner: testData Shared Strings: line 1: element sst has no end\n"
              "tamrixrunner: .xlsx file is corrupt: file is not contained in the archive!\n");
    EXPECT_TRUE(TiXmlBase::IsWhiteSpaceCondensed());
}

TEST(ExcelXmlPart, RefusesWhatTinyXmlMustNotGet) {
    const auto problemOf = [](const QByteArray& text) -> std::string {
        try {
            ExcelXmlPart(text).forEach({"a", "b"}, [](const TiXmlElement&) {});
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    };
    QByteArray attributes;
    for (int i = 0; i <= maxXmlAttributes; ++i)
        attributes += " x" + QByteArray::number(i) + "=''";
    const QByteArray large(static_cast<int>(ExcelXmlPart::maxElementSize), 'x');
    const struct {
        QByteArray text;
        const char* problem;
    } rows[] = {
        {"\xef\xbb\xbf<?xml version='1.0'?><!-- <a> --><a c='>'><b d = \"'\"/><![CDATA[</b>]]></a>",
         ""},
        {"<!DOCTYPE a [<!ENTITY x 'y'>]><a/>", "line 1: a document type, which is not allowed"},
        {"<a><b\n>", "line 2: element b has no end"},
        {"<a></b></a>", "line 1: an end tag of b that ends nothing"},
        {"<a b=c/>", "line 1: an attribute's value without quotes"},
        {"<a><b", "line 1: a tag has no end"},
        {"<a" + attributes + "/>", "line 1: too many attributes"},
        {QByteArray("<a>").repeated(1001), "line 1: elements are nested too deep"},
        {"<a><b>" + large + "</b></a>", "line 1: an element is larger than 8 MiB"},
        {"<a><b>" + QByteArray("<c/>").repeated(300000) + "</b></a>",
         "line 1: an element holds more than 300000 tags"},
        {"<a>\n<b>\xff</b></a>", "line 2: A byte that is not UTF-8."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(problemOf(row.text), row.problem) << row.text.left(50).constData();
}

TEST(ExcelArchive, ChecksWhatItUnpacks) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.zip");
    const auto extract = [&path](const char* name) -> QByteArray {
        unzFile archive = unzOpen(QFile::encodeName(path).constData());
        QByteArray result;
        try {
            result = extractFromZipArchive(archive, name);
        } catch (const std::runtime_error& error) {
            result = error.what();
        }
        unzClose(archive);
        return result;
    };
    const QByteArray contents(100000, 'x');
    writeArchive(path, {{"a", contents}, {"empty", ""}});
    EXPECT_EQ(extract("a"), contents);
    EXPECT_EQ(extract("empty"), "");
    EXPECT_EQ(extract("A"), notInArchive);

    // The size and the check sum stand in the entry itself and in the directory.
    const QByteArray sound = readFile(path);
    const int entry = 0;
    const int directory = sound.indexOf("PK\1\2");
    const auto withNumber = [&sound](int offset, int inEntry, quint32 number) {
        QByteArray changed = sound;
        for (int i = 0; i < 4; ++i) {
            changed[offset + i] = static_cast<char>(number >> (8 * i));
            changed[inEntry + i] = static_cast<char>(number >> (8 * i));
        }
        return changed;
    };
    ASSERT_TRUE(writeFile(path, withNumber(directory + 24, entry + 22, 1000)));
    EXPECT_EQ(extract("a"), "crc check failed! ");
    ASSERT_TRUE(writeFile(path, withNumber(directory + 24, entry + 22, 100001)));
    EXPECT_EQ(extract("a"), "unknown error when extracting data 'a'.");
    ASSERT_TRUE(writeFile(path, withNumber(directory + 24, entry + 22, (512U << 20) + 1)));
    EXPECT_EQ(extract("a"), "a is larger than 512 MiB");
    ASSERT_TRUE(writeFile(path, withNumber(directory + 16, entry + 14, 5)));
    EXPECT_EQ(extract("a"), "crc check failed! ");

    // Zeros are packed a thousand to one.
    writeArchive(path, {{"much", QByteArray(freeEntrySize + 1, '0')},
                        {"little", QByteArray(freeEntrySize, '0')}});
    EXPECT_EQ(extract("much"), "much unpacks to more than 100 times its size");
    EXPECT_EQ(extract("little").size(), freeEntrySize);

    void* none = nullptr;
    EXPECT_THROW(extractFromZipArchive(none, "a"), std::runtime_error);
}

}  // namespace
}  // namespace Tamrix
