#pragma once

#include <gtest/gtest.h>

#include "agent/input/inputprogram.h"
#include "agent/input/testdisplay.h"
#include "support/qtversions.h"

namespace Tamrix {

struct InputSetting {
    const char* platform;
    int qtVersion;
};

/// The platforms with each version of Qt.
inline std::vector<InputSetting> inputSettings(const std::vector<const char*>& platforms = {
                                                   "offscreen", "xcb"}) {
    std::vector<InputSetting> settings;
    for (const int version : qtVersions()) {
        for (const char* platform : platforms)
            settings.push_back({platform, version});
    }
    return settings;
}

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): it uses one itself.
#define TAMRIX_FOR_EACH_PLATFORM(Test, ...)                            \
    INSTANTIATE_TEST_SUITE_P(                                          \
        , Test, testing::ValuesIn(Tamrix::inputSettings(__VA_ARGS__)), \
        [](const auto& row) { return row.param.platform + Tamrix::qtName(row.param.qtVersion); })

/// Every test runs in all settings, each time with a program of its own.
class InputTest : public testing::TestWithParam<InputSetting> {
protected:
    void SetUp() override {
        m_display = std::make_unique<TestDisplay>(GetParam().platform);
        m_program = std::make_unique<InputProgram>(target(), GetParam().platform, m_display->name(),
                                                   arguments(), environment());
        ASSERT_NE(program().object("main").handle, 0U)
            << program().client().lastError().toStdString();
    }
    void TearDown() override {
        m_program.reset();
        m_display.reset();
    }

    virtual QString target() const { return forQt("input_target", qtVersion()); }
    static int qtVersion() { return GetParam().qtVersion; }
    static bool isWayland() { return qstrcmp(GetParam().platform, "wayland") == 0; }
    virtual QStringList arguments() const { return {}; }
    virtual QMap<QString, QString> environment() const { return {}; }
    InputProgram& program() { return *m_program; }

private:
    std::unique_ptr<TestDisplay> m_display;
    std::unique_ptr<InputProgram> m_program;
};

}  // namespace Tamrix
