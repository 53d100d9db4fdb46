#include <gtest/gtest.h>

#include "dap/session/hitcondition.h"
#include "dap/session/logmessage.h"
#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

/// For which of the first six times a condition holds.
QString heldTimes(const QString& condition) {
    const Outcome<HitCondition> parsed = HitCondition::parse(condition);
    if (!parsed)
        return parsed.error().text;
    QString times;
    for (int hits = 1; hits <= 6; ++hits)
        times += parsed->holds(hits) ? QString::number(hits) : "-";
    return times;
}

TEST(HitCondition, HoldsForSomeTimes) {
    EXPECT_EQ(heldTimes("3"), "--3---");
    EXPECT_EQ(heldTimes(" == 3 "), "--3---");
    EXPECT_EQ(heldTimes(">3"), "---456");
    EXPECT_EQ(heldTimes(">= 3"), "--3456");
    EXPECT_EQ(heldTimes("< 3"), "12----");
    EXPECT_EQ(heldTimes("<=3"), "123---");
    EXPECT_EQ(heldTimes("%3"), "--3--6");
}

TEST(HitCondition, NamesWhatIsNone) {
    for (const char* wrong : {"often", "0", "% 0", "=> 3", "3 times", "99999999999", "-1", ""}) {
        EXPECT_EQ(heldTimes(wrong),
                  QString("the hit condition '") + wrong +
                      "' is none: a number from 1 on is expected, alone or behind ==, >, >=, <, <= "
                      "or %");
    }
}

TEST(LogMessage, IsSplitAtExpressionsInBraces) {
    struct Row {
        const char* message;
        std::vector<LogPart> parts;
    };
    const Row rows[] = {
        {"plain", {{"plain"}}},
        {"{a}", {{"a", true}}},
        {"a is { a } here", {{"a is "}, {"a", true}, {" here"}}},
        {"{ {'k': 1}['k'] }!", {{"{'k': 1}['k']", true}, {"!"}}},
        {"open { and }} close", {{"open "}, {"and", true}, {"} close"}}},
        {"{", {{"{"}}},
        {"{}", {{"{}"}}},
        {"{a}{b}", {{"a", true}, {"b", true}}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(splitLogMessage(row.message), row.parts) << row.message;
}

}  // namespace
}  // namespace Tamrix::Dap
