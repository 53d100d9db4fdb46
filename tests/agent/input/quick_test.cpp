#include <gmock/gmock.h>

#include "agent/input/inputtest.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

class QuickInputTest : public InputTest {
protected:
    QString target() const override { return forQt("inputquick_target", qtVersion()); }
};

TAMRIX_FOR_EACH_PLATFORM(QuickInputTest, {"offscreen", "xcb", "wayland"});

TEST_P(QuickInputTest, ItemsTakeInputLikeWidgets) {
    struct {
        const char* function;
        const char* object;
        QVariantList arguments;
        QString error;
        const char* log;
    } const cases[] = {
        {"click", "pad", {5, 6}, "", "click 5,6 1"},
        {"click", "pad", {5, 6, "right"}, "", "click 5,6 2"},
        {"doubleClick", "pad", {5, 6}, "", "click 5,6 1|double"},
        {"click", "hidden", {}, "", "hidden"},
        {"click", "far", {}, "", "far"},
        {"fill", "fixed", {"x"}, "QQuickTextInput 'stays' is read only", ""},
        {"fill", "pad", {"x"}, "QQuickRectangle 'pad' is no field that takes text", ""},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(program().call(row.function, row.object, row.arguments), row.error) << row.object;
        EXPECT_EQ(program().takeLog(), row.log) << row.object;
    }
    EXPECT_THAT(program().call("click", "hidden", {5, 20}, 200).toStdString(),
                testing::HasSubstr("QQuickMouseArea covers the point (5, 20)"));
    EXPECT_EQ(program().call("hover", "pad"), "");
    EXPECT_EQ(program().read("pad", "color").toString(), "#ff0000");
    EXPECT_EQ(program().call("fill", "input", {"Grüße"}), "");
    EXPECT_EQ(program().read("input", "text").toString(), "Grüße");
    EXPECT_EQ(program().call("fill", "area", {"two\nlines"}), "");
    EXPECT_EQ(program().read("area", "text").toString(), "two\nlines");
    EXPECT_EQ(program().call("check", "check"), "");
    EXPECT_TRUE(program().read("check", "checked").toBool());
    EXPECT_EQ(program().call("uncheck", "check"), "");
    EXPECT_FALSE(program().read("check", "checked").toBool());
    EXPECT_EQ(program().call("selectItem", "combo", {"Third"}), "");
    EXPECT_EQ(program().read("combo", "currentIndex").toInt(), 2);
}

}  // namespace
}  // namespace Tamrix
