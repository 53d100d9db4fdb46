#include <QJsonArray>

#include "platform/verification/check.h"
#include "platform/verification/verificationtest.h"

namespace Tamrix {
namespace {

class ChecksTest : public Test::VerificationTest {
protected:
    FindObject find = [this](const QString& wanted) -> Outcome<SharedPtr<Object>> {
        if (const SharedPtr<Object> object = model.findObject(wanted))
            return object;
        return fail(FailureKind::NotFound, "no " + wanted);
    };
    Findings checkProperty(const QString& property, const ExpectedValue& expected) {
        return check(PropertiesPoint{{{name, {{property, expected}}}}}, find);
    }
    Findings checkTable(const ExpectedTable& table) { return check(TablePoint{{table}}, find); }
};

TEST_F(ChecksTest, CompareValuesOfAllKinds) {
    const auto column = [](const QString& text, double tolerance = 0) {
        return ColumnValue{"C", tolerance, text};
    };
    const struct {
        QString property;
        ExpectedValue expected;
        /// Empty for none.
        QString difference;
    } rows[] = {
        {"text", PlainValue{"12.50"}, ""},
        {"text", PlainValue{"12.5"}, "text is '12.50', expected '12.5'"},
        // A text is no number.
        {"text", PlainValue{12.5}, "text is '12.50', expected 12.5"},
        {"enabled", PlainValue{true}, ""},
        {"enabled", PlainValue{"true"}, "enabled is true, expected 'true'"},
        {"width", PlainValue{120}, ""},
        {"width", PlainValue{117, 3}, ""},
        {"width", PlainValue{116, 3}, "width is 120, expected 116 within 3"},
        {"ratio", PlainValue{0.25}, "ratio is 0.5, expected 0.25"},
        {"geometry", PlainValue{"QRect(1, 2, 30, 40)"}, ""},
        {"geometry.width", PlainValue{30}, ""},
        {"words", PlainValue{QJsonArray{"a", "b"}}, ""},
        {"words", PlainValue{QJsonArray{"a"}}, "words is [\"a\",\"b\"], expected [\"a\"]"},
        {"partner", PlainValue{otherName}, ""},
        {"text", WildcardText{"12*"}, ""},
        {"text", WildcardText{"1[3-9]*"},
         "text is '12.50', expected what the wildcard '1[3-9]*' matches"},
        {"enabled", WildcardText{"t?ue"}, ""},
        {"text", PatternText{"\\.\\d+$"}, ""},
        {"width", PatternText{"^1$"},
         "width is 120, expected what the regular expression '^1$' matches"},
        {"text", column("12.50"), ""},
        {"text", column("12.5"), "text is '12.50', expected '12.5' of the column 'C'"},
        {"text", column("12.4", 0.2), ""},
        {"width", column("120.0"), ""},
        {"width", column("121", 0.5), "width is 120, expected '121' within 0.5 of the column 'C'"},
        {"enabled", column("true"), ""},
    };
    for (const auto& row : rows) {
        const QString difference =
            row.difference.isEmpty() ? QString() : "Object '" + name + "': " + row.difference;
        EXPECT_EQ(checkProperty(row.property, row.expected).differences().join('|'), difference);
    }
}

TEST_F(ChecksTest, RenewValuesAndNothingElse) {
    const PropertiesPoint point{{{name,
                                  {{"text", PlainValue{"old"}},
                                   {"width", PlainValue{1, 2}},
                                   {"ratio", WildcardText{"x"}},
                                   {"none", PlainValue{1}}}},
                                 {":Missing", {{"text", PlainValue{"a"}}}}}};
    const Findings findings = check(point, find);
    EXPECT_EQ(findings.compared, 5);
    EXPECT_EQ(findings.renewable.size(), 2);
    ASSERT_EQ(findings.lasting.size(), 3);
    EXPECT_TRUE(findings.lasting[1].startsWith("Object '" + name + "': 'none' can't be read: "));
    EXPECT_EQ(findings.lasting[2], "no :Missing");
    EXPECT_TRUE(findings.isObjectMissing);
    PropertiesPoint renewed = point;
    renewed.objects[0].properties[0].expected = PlainValue{"12.50"};
    renewed.objects[0].properties[1].expected = PlainValue{120, 2};
    EXPECT_TRUE(findings.renewed == VerificationPoint(renewed));
}

ExpectedCell cell(const QString& text) {
    return {PlainValue{text}, {}};
}

TEST_F(ChecksTest, CompareCells) {
    const ExpectedTable whole{name, 0, 0, true, {{cell("a"), cell("b")}, {cell("c"), cell("d")}}};
    EXPECT_EQ(checkTable(whole).differences(), QStringList());
    EXPECT_EQ(requests, QStringList{"viewCells 0 0 -1 -1"});

    ExpectedTable other = whole;
    other.rows[1][0].text = WildcardText{"x*"};
    other.rows[1][1] = {PlainValue{"D"}, CellColor{255, 1, 2, 3}};
    const QString prefix = "Object '" + name + "': ";
    EXPECT_EQ(
        checkTable(other).differences(),
        (QStringList{prefix + "row 1, column 0 is 'c', expected what the wildcard 'x*' matches",
                     prefix + "row 1, column 1 is 'd', expected 'D'",
                     prefix + "row 1, column 1 has the background none, expected #FF010203"}));

    // A part of it, which may go on.
    requests.clear();
    cells = cellsOf(10, 9, 1, {"x"});
    EXPECT_TRUE(checkTable({name, 3, 2, false, {{cell("x")}}}).isAsExpected());
    EXPECT_EQ(requests, QStringList{"viewCells 3 2 1 1"});
}

TEST_F(ChecksTest, TellTheSizesOfTablesAndRenewThem) {
    cells = cellsOf(3, 1, 1, {"a", "b", "c"});
    const Findings findings =
        checkTable({name, 0, 0, true, {{cell("a"), cell("x")}, {cell("b"), cell("y")}}});
    const QString prefix = "Object '" + name + "': ";
    EXPECT_EQ(findings.differences(), (QStringList{prefix + "there are 3 rows, expected 2",
                                                   prefix + "there are 1 columns, expected 2"}));
    const ExpectedTable renewed{name, 0, 0, true, {{cell("a")}, {cell("b")}, {cell("c")}}};
    EXPECT_TRUE(findings.renewed == VerificationPoint(TablePoint{{renewed}}));

    EXPECT_EQ(checkTable({name, 2, 0, false, {{cell("c")}, {cell("d")}}}).differences().first(),
              prefix + "there are 3 rows, expected at least 4");
    cells = cellsOf(0, 5, 5, {});
    EXPECT_TRUE(checkTable({name, 0, 0, true, {}}).isAsExpected());
}

TEST_F(ChecksTest, TakeNoAnswerThatMakesNoSense) {
    for (const QVariantMap& answer :
         {QVariantMap(), cellsOf(1, 1, 0, {"a"}), cellsOf(2, 2, 2, {"a", "b", "c"}),
          QVariantMap{{"columns", 1}, {"texts", QStringList{"a"}}, {"backgrounds", "abc"}}}) {
        cells = answer;
        const QStringList differences = checkTable({name, 0, 0, true, {{cell("a")}}}).differences();
        EXPECT_FALSE(differences.isEmpty());
        if (!answer.isEmpty()) {
            EXPECT_TRUE(differences.first().endsWith("makes no sense"))
                << qPrintable(differences.first());
        }
    }
    const VisualPoint visual{name, {}, {"Window", "", "", {0, 0, 1, 1}, {}}, {}, {}};
    EXPECT_EQ(check(visual, find).lasting,
              QStringList{"Object '" + name + "' can't be looked at: There is no snapshot"});
    model.snapshotBytes = QByteArray(4, 0);
    EXPECT_EQ(check(visual, find).lasting,
              QStringList{"Object '" + name +
                          "' can't be looked at: The application's answer with the elements of an "
                          "object makes no sense"});
}

}  // namespace
}  // namespace Tamrix
