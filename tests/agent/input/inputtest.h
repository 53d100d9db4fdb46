#pragma once

#include <gtest/gtest.h>

#include "agent/input/inputprogram.h"
#include "agent/input/testdisplay.h"

namespace Tamrix {

/// Every test runs on both platforms, each with a program of its own.
class InputTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        const QString platform = GetParam();
        if (platform == "xcb")
            m_display = std::make_unique<TestDisplay>();
        m_program = std::make_unique<InputProgram>(
            target(), platform, m_display ? m_display->name() : QString(), arguments());
        ASSERT_NE(program().object("main").handle, 0U)
            << program().client().lastError().toStdString();
    }
    void TearDown() override {
        m_program.reset();
        m_display.reset();
    }

    virtual QString target() const { return "input_target"; }
    virtual QStringList arguments() const { return {}; }
    InputProgram& program() { return *m_program; }

private:
    std::unique_ptr<TestDisplay> m_display;
    std::unique_ptr<InputProgram> m_program;
};

}  // namespace Tamrix
