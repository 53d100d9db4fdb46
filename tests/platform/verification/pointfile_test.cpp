#include <gtest/gtest.h>

#include <QImage>
#include <QJsonArray>
#include <QTemporaryDir>

#include "platform/verification/verificationpointfile.h"
#include "support/failuretext.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::readFile;
using Tamrix::Test::writeFile;
using Test::failureText;

PropertiesPoint propertiesPoint() {
    return {{{"{type='QLineEdit' name='amount'}",
              {{"text", PlainValue{"12 \"€\"\n"}},
               {"enabled", PlainValue{true}},
               {"geometry.width", PlainValue{120, 2.5}},
               {"toolTip", WildcardText{"Total: *"}},
               {"placeholderText", PatternText{"^\\d+$"}},
               {"value", ColumnValue{"Amount", 0.5}},
               {"validator", PlainValue{QJsonValue::Null}},
               {"list", PlainValue{QJsonValue(QJsonArray{1, "two", 2.5})}}}},
             {":Save", {{"visible", PlainValue{false}}}}}};
}

TablePoint tablePoint() {
    const CellColor red{255, 255, 0, 16};
    return {{{":Whole", 0, 0, true, {{{PlainValue{"a"}, {}}, {WildcardText{"b*"}, red}}}},
             {":Part", 3, 1, false, {{{PlainValue{"x"}, CellColor{}}}, {{PlainValue{"y"}, {}}}}},
             {":Empty", 0, 0, true, {}}}};
}

VisualPoint visualPoint() {
    VisualPoint point;
    point.name = "{type='Dialog'}";
    point.rules = {true, false, true, 2, 16, 0.25};
    point.pictureFile = "dialog.vp.png";
    point.root = {"Dialog",
                  "",
                  "Title",
                  {0, 0, 20, 10},
                  {{"Label", "name", "", {1, 2, 3, 4}, {}},
                   {"Group", "", "", {-5, 0, 7, 8}, {{"Button", "ok", "OK", {0, 0, 2, 2}, {}}}}}};
    return point;
}

class PointFileTest : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath("verificationPoints/dialog.vp");
};

TEST_F(PointFileTest, ReadsWhatItWrites) {
    const std::pair<QString, VerificationPoint> points[] = {
        {"properties", propertiesPoint()}, {"table", tablePoint()}, {"visual", visualPoint()}};
    for (const auto& [name, point] : points) {
        const QByteArray json = verificationPointJson(point);
        EXPECT_TRUE(Tamrix::Test::compareWithGolden("platform/verification/" + name + ".json",
                                                    QString::fromUtf8(json)));
        const Outcome<VerificationPoint> read = parseVerificationPoint(json);
        ASSERT_TRUE(read) << qPrintable(name + ": " + failureText(read));
        EXPECT_TRUE(*read == point) << qPrintable(name);
    }
}

TEST_F(PointFileTest, KeepsThePictureInAFileBesideIt) {
    VisualPoint point = visualPoint();
    point.picture = QImage(20, 10, QImage::Format_RGB32);
    point.picture.fill(Qt::green);
    ASSERT_EQ(failureText(writeVerificationPoint(path, point)), "");
    EXPECT_EQ(QDir(folder.filePath("verificationPoints")).entryList(QDir::Files),
              (QStringList{"dialog.vp", "dialog.vp.png"}));
    const Outcome<VerificationPoint> read = readVerificationPoint(path);
    ASSERT_TRUE(read) << qPrintable(failureText(read));
    EXPECT_TRUE(*read == VerificationPoint(point));

    // Nothing is lost when the picture can't be stored.
    point.picture = QImage();
    const QByteArray before = readFile(path);
    EXPECT_EQ(failureText(writeVerificationPoint(path, point)),
              "The picture of '{type='Dialog'}' can't be stored: there is none");
    EXPECT_EQ(readFile(path), before);

    ASSERT_TRUE(writeFile(path + ".png", "no picture"));
    EXPECT_TRUE(failureText(readVerificationPoint(path)).startsWith("The picture '" + path));
}

TEST_F(PointFileTest, SaysWhatIsWrongAndWhere) {
    const QByteArray start = R"({"tamrixVerificationPoint": 1, "kind": )";
    const auto properties = [&start](const QByteArray& property) {
        return start + R"("properties", "objects": [{"name": "a", "properties": [)" + property +
               "]}]}";
    };
    const auto table = [&start](const QByteArray& members) {
        return start + R"("table", "objects": [{"name": "a", )" + members + "}]}";
    };
    const auto visual = [&start](const QByteArray& members) {
        return start + R"("visual", "object": "a", )" + members + "}";
    };
    const QByteArray element = R"("element": {"type": "A", "place": [0, 0, 1, 1]})";
    const struct {
        QByteArray json;
        QString error;
    } rows[] = {
        {"", "line 1, column 1: illegal value"},
        {"{\n  \"a\": 1,\n  b", "line 3, column 4: unterminated object"},
        {"[]", "an object is expected"},
        {"{}", "the member \"tamrixVerificationPoint\" is missing"},
        {R"({"tamrixVerificationPoint": 2})",
         "tamrixVerificationPoint: version 1 of the format is expected"},
        {R"({"tamrixVerificationPoint": 1})", "the member \"kind\" is missing"},
        {start + "\"odd\"}",
         "kind: \"properties\", \"table\" or \"visual\" is expected, not \"odd\""},
        {start + R"("properties", "objects": []})", "objects: no object is expected"},
        {start + R"("properties", "objects": [1]})", "objects[0]: an object is expected"},
        {start + R"("properties", "objects": [{"name": ""}]})",
         "objects[0].name: the text is empty"},
        {properties(""), "objects[0]: no property is expected"},
        {properties(R"({"property": "x"})"),
         "objects[0].properties[0]: one of \"value\", \"wildcard\", \"regex\" and \"column\" is "
         "missing"},
        {properties(R"({"property": "x", "value": 1, "column": "c"})"),
         "objects[0].properties[0]: \"value\" and \"column\" exclude each other"},
        {properties(R"({"property": "x", "value": [[{}]]})"),
         "objects[0].properties[0].value[0][0]: a bool, a number, a text, null or a list is "
         "expected"},
        {properties(R"({"property": "x", "value": [[[[[[[[[[1]]]]]]]]]]})"),
         "objects[0].properties[0].value[0][0][0][0][0][0][0][0][0]: lists are nested too deep"},
        {properties(R"({"property": "x", "value": "1", "tolerance": 1})"),
         "objects[0].properties[0].tolerance: only numbers have a tolerance"},
        {properties(R"({"property": "x", "value": 1, "tolerance": -1})"),
         "objects[0].properties[0].tolerance: a number from 0 to 1.79769e+308 is expected"},
        {properties(R"({"property": "x", "regex": "("})"),
         "objects[0].properties[0].regex: '(' is no valid regular expression: missing closing "
         "parenthesis at character 2"},
        {properties(R"({"property": "x", "wildcard": "[a"})"),
         "objects[0].properties[0].wildcard: the wildcard '[a' has a '[' without ']' at character "
         "1"},
        {properties(R"({"property": "x", "value": 1, "tolerence": 1})"),
         "objects[0].properties[0]: the member \"tolerence\" is not known"},
        {table(R"("rows": [["a"], ["b", "c"]])"),
         "objects[0].rows[1]: the row has 2 cells, the first one has 1"},
        {table(R"("rows": ["a"])"), "objects[0].rows[0]: a list of cells is expected"},
        {table(R"("rows": [[1]])"), "objects[0].rows[0][0]: an object is expected"},
        {table(R"("rows": [[{"value": "a", "background": "red"}]])"),
         "objects[0].rows[0][0].background: a colour of the form #AARRGGBB is expected"},
        {table(R"("rows": [], "firstRow": 1.5)"),
         "objects[0].firstRow: a whole number is expected"},
        {table(R"("rows": [], "whole": 1)"), "objects[0].whole: true or false is expected"},
        {visual(R"("compare": ["text", "sound"], )" + element),
         "compare: \"text\", \"place\" and \"picture\" are expected"},
        {visual(R"("compare": ["picture"], )" + element),
         "pictures are compared, but there is no \"picture\""},
        {visual(R"("compare": [], "picture": "../a.png", )" + element),
         "picture: the name of a file beside this one is expected"},
        {visual(R"("compare": [], "element": {"type": "A", "place": [0, 0, 1]})"),
         "element.place: x, y, width and height are expected"},
        {visual(R"("compare": [], "element": {"type": "A", "place": [0, 0, 1, 1e10]})"),
         "element.place[3]: a whole number of pixels is expected"},
        {visual(R"("compare": [], "tolerance": {"color": 256}, )" + element),
         "tolerance.color: a number from 0 to 255 is expected"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failureText(parseVerificationPoint(row.json)), row.error) << row.json.data();
}

TEST_F(PointFileTest, TakesNoMoreThanItCanHold) {
    EXPECT_EQ(failureText(readVerificationPoint(path)),
              "The verification point '" + path + "' can't be read: No such file or directory");
    ASSERT_TRUE(writeFile(path, "{"));
    EXPECT_EQ(failureText(readVerificationPoint(path)),
              "The verification point '" + path +
                  "' can't be read: line 1, column 2: unterminated object");
    ASSERT_TRUE(writeFile(path, QByteArray((16 << 20) + 1, ' ')));
    EXPECT_EQ(failureText(readVerificationPoint(path)),
              "The verification point '" + path + "' can't be read: it has more than 16 MiB");

    QByteArray element = R"({"type": "A", "place": [0, 0, 1, 1]})";
    for (int depth = 1; depth <= maximalElementDepth; ++depth)
        element = R"({"type": "A", "place": [0, 0, 1, 1], "children": [)" + element + "]}";
    EXPECT_TRUE(failureText(parseVerificationPoint(
                                R"({"tamrixVerificationPoint": 1, "kind": "visual", "object": "a",)"
                                R"("compare": [], "element": )" +
                                element + "}"))
                    .endsWith("children[0]: elements are nested too deep"));

    EXPECT_EQ(failureText(writeVerificationPoint("/proc/none/x", propertiesPoint())),
              "The folder '/proc/none' can't be made");
}

}  // namespace
}  // namespace Tamrix
