#include "shared/testdata/tablerange.h"

#include <gmock/gmock.h>

namespace Tamrix {
namespace {

class Grid : public TableRange {
public:
    using TableRange::TableRange;

protected:
    int sourceRowCount() const override { return 9; }
    int sourceColumnCount() const override { return 2; }
    CellColor sourceBackgroundColor(int row, int column) const override {
        return column == 0 ? CellColor() : CellColor{255, static_cast<std::uint8_t>(row), 0, 16};
    }
    std::string sourceText(int row, int column) const override {
        return std::to_string(row) + " < " + std::to_string(column) + "  ";
    }
};

TEST(TableRange, IsToldAsXmlAndReadBack) {
    const Grid grid(2, 4, -1, -1);
    EXPECT_EQ(grid.rowCount(), 2);
    EXPECT_EQ(grid.columnCount(), 2);
    const std::string xml = grid.contentAsXml(3);
    EXPECT_THAT(xml, testing::StartsWith("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
                                         "<table hasText=\"1\" hasBackgroundColor=\"1\">\n"
                                         "    <row>\n        <cell>\n"
                                         "            <text>2 &lt; 0  </text>\n        </cell>\n"
                                         "        <cell>\n            <text>2 &lt; 1  </text>\n"
                                         "            <backgroundColor>#FF020010</"));
    XmlTableRange read;
    ASSERT_TRUE(read.loadContentFromXml(xml));
    EXPECT_EQ(read.text(1, 1), "3 < 1  ");
    EXPECT_EQ(read.backgroundColor(1, 1), (CellColor{255, 3, 0, 16}));
    EXPECT_EQ(read.backgroundColor(0, 0), CellColor());
    EXPECT_EQ(read.text(2, 0), "");
    EXPECT_EQ(read.contentAsXml(3), xml);
    ASSERT_TRUE(read.loadContentFromXml(
        "<table><row><cell><text> \n</text></cell><cell><text/></cell></row></table>"));
    EXPECT_EQ(read.text(0, 0), " \n");
    EXPECT_EQ(read.text(0, 1), "");
    EXPECT_EQ(grid.contentAsXml(0), "");
    EXPECT_THAT(Grid(3, 3, 0, 1).contentAsXml(3),
                testing::EndsWith("<table hasText=\"1\" hasBackgroundColor=\"1\" />\n"));
}

TEST(TableRange, ReadsColours) {
    const struct {
        const char* text;
        CellColor color;
    } rows[] = {{"#FF0000", {255, 255, 0, 0}},
                {"#01020304", {1, 2, 3, 4}},
                {"FF0000", {}},
                {"#FF00", {}},
                {"#GG0000", {}},
                {"", {}}};
    for (const auto& row : rows) {
        XmlTableRange range;
        ASSERT_TRUE(range.loadContentFromXml(std::string("<table><row><cell><backgroundColor>") +
                                             row.text + "</backgroundColor></cell></row></table>"));
        EXPECT_EQ(range.backgroundColor(0, 0), row.color) << row.text;
    }
}

TEST(TableRange, TellsWhatIsWrong) {
    const struct {
        const char* xml;
        const char* error;
    } rows[] = {
        {"<row/>", "Missing table element in XML input\n"},
        {"<table><row><cell/></row><row/></table>",
         "Malformed table XML, number of columns differ between rows\n"},
        {"<table>\n<row></table>", "XML Parse Error at 2,"},
    };
    for (const auto& row : rows) {
        XmlTableRange range;
        testing::internal::CaptureStderr();
        EXPECT_FALSE(range.loadContentFromXml(row.xml));
        EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::StartsWith(row.error));
    }
}

}  // namespace
}  // namespace Tamrix
