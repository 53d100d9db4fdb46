// Versions of Qt that lack what is looked up in them.

#include "agent/input/windowsystem.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include "support/printqt.h"

namespace Tamrix::Agent {
namespace {

TEST(WindowSystemTest, AMissingFunctionIsNamedAndCostsOnlyWhatNeedsIt) {
    using Use = WindowSystem::Use;
    const struct {
        const char* missing;
        Use use;
        QString function;
    } cases[] = {
        {"handleEnterEvent", Use::Mouse, "QWindowSystemInterface::handleEnterEvent"},
        {"handleMouseEvent", Use::Mouse, "QWindowSystemInterface::handleMouseEvent"},
        {"scaleAndOrigin", Use::Mouse, "QHighDpiScaling::scaleAndOrigin"},
        {"handleKeyEvent", Use::Keys, "QWindowSystemInterface::handleKeyEvent"},
        {"handleCloseEvent", Use::Closing, "QWindowSystemInterface::handleCloseEvent"},
        // Done without, or known by its other name.
        {"windowSystemEventsQueued", Use::None, ""},
        {"handleWindowActivated", Use::None, ""},
    };
    for (const auto& row : cases) {
        int place = 0;
        const WindowSystem system([&](const char* symbol) -> void* {
            return QByteArray(symbol).contains(row.missing) ? nullptr : &place;
        });
        for (const Use use : {Use::None, Use::Mouse, Use::Keys, Use::Closing}) {
            const QString text = QString("the program's Qt %1 has no function %2, which this needs")
                                     .arg(QLatin1String(qVersion()), row.function);
            EXPECT_EQ(system.obstacle(use), use == row.use && use != Use::None ? text : "")
                << row.missing;
        }
    }
}

TEST(WindowSystemTest, WhatIsMissingIsPassedOver) {
    const WindowSystem nothing([](const char*) -> void* { return nullptr; });
    nothing.leave(nullptr);
    nothing.key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a");
    nothing.close(nullptr);
    nothing.activate(nullptr);
    EXPECT_EQ(nothing.queuedEvents(), 0);
}

}  // namespace
}  // namespace Tamrix::Agent
