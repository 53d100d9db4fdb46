#include "vision/search/searchregion.h"

#include <gtest/gtest.h>

#include "support/printqt.h"
#include "vision/search/failuretext.h"

namespace Tamrix::Vision {
namespace {

using Tamrix::Test::failureText;
using Tamrix::Test::jsonOf;

TEST(SearchRegion, ASingleRectangleMustContain) {
    const SearchRegion region(QList<QRect>{{0, 0, 10, 10}, {10, 0, 10, 10}});
    EXPECT_EQ(region.boundingBox(), QRect(0, 0, 20, 10));
    EXPECT_TRUE(region.contains(QRect(10, 0, 10, 10)));
    EXPECT_FALSE(region.contains(QRect(8, 0, 4, 4)));
    EXPECT_TRUE(region.contains(QPoint(19, 9)));
    EXPECT_FALSE(region.contains(QPoint(20, 9)));
    EXPECT_EQ(SearchRegion().boundingBox(), QRect());
    EXPECT_FALSE(SearchRegion().contains(QRect()));
}

TEST(SearchRegion, FormsAreReadAsTheyAreWritten) {
    const QString text = "-1x2x3x4,5x6x7x8";
    const SearchRegion region(text);
    EXPECT_EQ(region.rectangles(), (QList<QRect>{{-1, 2, 3, 4}, {5, 6, 7, 8}}));
    EXPECT_EQ(region.description(), text);
    EXPECT_EQ(SearchRegion(region.toJson()).description(), text);
    const QString largest = "1x1x2147483647x2147483647";
    EXPECT_EQ(SearchRegion(SearchRegion(largest).toJson()).description(), largest);
    EXPECT_TRUE(SearchRegion(QString()).isEmpty());
    EXPECT_EQ(pointFromJson(pointToJson({-3, 4})), QPoint(-3, 4));
}

TEST(SearchRegion, FaultyFormsAreNamed) {
    const struct {
        const char* text;
        const char* failure;
    } texts[] = {
        {"1x2x3", "Rectangle descriptor must consist of four integers"},
        {"1x2x3x4,1x2x3x4x5", "Rectangle descriptor must consist of four integers"},
        {"ax2xbx4", "Invalid number: b"},
        {"1x2x0x4", "Invalid rectangle: 1x2x0x4"},
        {"1x2x3x-4", "Invalid rectangle: 1x2x3x-4"},
        {"2147483647x0x2x1", "Invalid rectangle: 2147483647x0x2x1"},
    };
    for (const auto& row : texts)
        EXPECT_EQ(failureText([&] { SearchRegion(QString(row.text)); }), row.failure);
    const struct {
        const char* json;
        const char* failure;
    } values[] = {
        {"[]", "rectangles entry missing"},
        {R"({"rectangles": {}})", "rectangles entry is not an array"},
        {R"({"rectangles": [5]})", "SearchRegion rectangle descriptor must be an object"},
        {R"({"rectangles": [{"x": 1}]})", "height entry missing"},
        {R"({"rectangles": [{"height": 1, "width": 1.5}]})", "width entry is not an integer"},
        {R"({"rectangles": [{"height": 1, "width": 1, "y": "1", "x": 1}]})",
         "y entry is not an integer"},
    };
    for (const auto& row : values)
        EXPECT_EQ(failureText([&] { SearchRegion{jsonOf(row.json)}; }), row.failure);
}

}  // namespace
}  // namespace Tamrix::Vision
