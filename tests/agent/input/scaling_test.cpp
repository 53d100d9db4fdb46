// Screens of which a pixel of the application is more than one.

#include <gtest/gtest.h>

#include "agent/input/inputtest.h"
#include "support/printqt.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {
namespace {

struct Scaling {
    InputSetting setting;
    const char* factor;
    const char* name;
};

std::vector<Scaling> scalings() {
    std::vector<Scaling> list;
    for (const InputSetting& setting : inputSettings({"offscreen", "xcb", "wayland"})) {
        list.push_back({setting, "1.5", "OneAndAHalf"});
        list.push_back({setting, "2", "Two"});
    }
    return list;
}

class ScalingTest : public testing::TestWithParam<Scaling> {};

INSTANTIATE_TEST_SUITE_P(, ScalingTest, testing::ValuesIn(scalings()), [](const auto& test) {
    return test.param.setting.platform + qtName(test.param.setting.qtVersion) + test.param.name;
});

TEST_P(ScalingTest, InputArrivesWhereItIsAimed) {
    const auto& [setting, factor, name] = GetParam();
    const TestDisplay display(setting.platform);
    InputProgram program(forQt("input_target", setting.qtVersion), setting.platform, display.name(),
                         {}, {{"QT_SCALE_FACTOR", factor}});
    ASSERT_NE(program.object("main").handle, 0U) << program.client().lastError().toStdString();
    EXPECT_EQ(program.call("hover", "pad"), "");
    program.takeLog();
    EXPECT_EQ(program.call("click", "pad", {5, 6}), "");
    EXPECT_EQ(program.takeLog(), "press 5,6 1 1|release 5,6 1 0");
    EXPECT_EQ(program.call("drag", "pad", {10, 10, 60, 20}), "");
    EXPECT_EQ(program.takeLog(), "press 10,10 1 1|release 70,30 1 0");
    EXPECT_EQ(program.call("click", "Plain"), "");
    EXPECT_EQ(program.takeLog(), "leave|clicked");
    EXPECT_EQ(program.call("selectItem", "combo", {"Choice 33"}), "");
    EXPECT_EQ(program.read("combo", "currentText").toString(), "Choice 33");
    EXPECT_EQ(program.call("fill", "line", {"scaled"}), "");
    EXPECT_EQ(program.read("line", "text").toString(), "scaled");
    // Pictures have all pixels of the screen.
    const Wire::NativeRequest request{"grabObjectScreenshot", {program.object("pad").handle, 0, 0}};
    const Screenshot picture = Screenshot::fromVariant(
        program.client().request<Wire::Value>(Wire::MessageType::NativeRequest, request).value);
    EXPECT_EQ(program.client().lastError(), "");
    EXPECT_NEAR(picture.image().width(),
                program.read("pad", "width").toInt() * QByteArray(factor).toDouble(), 1);
}

}  // namespace
}  // namespace Tamrix
