#include "interpreter/objects/nearestnames.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(NearestNames, AreRankedByWhatTheyHaveInCommon) {
    const struct {
        const char* name;
        const char* wanted;
        double likeness;
    } pairs[] = {
        {"text", "txet", 0.75},
        {"width", "widht", 0.8},
        {"setValue", "setvalue", 0.875},
        {"abcd", "bcde", 0.75},
        {"", "x", 0},
        {"", "", 1},
        {"abxcd", "abcd", 8.0 / 9},
        {"click", "text", 0},
    };
    for (const auto& pair : pairs)
        EXPECT_DOUBLE_EQ(likeness(pair.name, pair.wanted), pair.likeness) << pair.name;

    const struct {
        const char* wanted;
        QStringList names;
        QStringList nearest;
    } rows[] = {
        {"setValu",
         {"value", "setValue", "setValues", "setVal", "unset", "values"},
         {"setValue", "setVal", "setValues"}},
        // Names that are equally alike come in one order, whatever theirs was.
        {"toolTip",
         {"toolTipDuration", "statusTip", "tooltip", "text", "ToolTip"},
         {"tooltip", "ToolTip", "toolTipDuration"}},
        {"ab", {"ba", "ac", "ab", "cb"}, {"ab"}},
        {"q", {"text", "width"}, {}},
        {"", {"text", ""}, {""}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(nearestNames(row.wanted, row.names), row.nearest) << row.wanted;
}

}  // namespace
}  // namespace Tamrix
