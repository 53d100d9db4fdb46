#include "runner/services/runner.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTimer>
#include <cmath>
#include <csignal>
#include <limits>

#include "platform/objectmodel/inspector.h"
#include "runner/coreapplication.h"
#include "runner/processes/interrupt.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

class RunnerTest : public testing::Test {
protected:
    RunnerTest() { Tamrix::Test::coreApplication(); }

    double secondsOfSnooze(double seconds) {
        QElapsedTimer timer;
        timer.start();
        runner.snooze(seconds);
        return static_cast<double>(timer.nsecsElapsed()) / 1e9;
    }

    Runner runner;
};

TEST_F(RunnerTest, SnoozeSleepsAndServesEvents) {
    int served = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&served] { ++served; });
    timer.start(20);
    EXPECT_GE(secondsOfSnooze(0.2), 0.19);
    // How often is up to how busy the machine is.
    EXPECT_GE(served, 1);
}

TEST_F(RunnerTest, SnoozeOfNoTimeReturnsAtOnce) {
    for (const double seconds : {0.0, -5.0, std::nan("")})
        EXPECT_LT(secondsOfSnooze(seconds), 5.0) << seconds;
}

TEST_F(RunnerTest, SnoozeEndsWhenTheRunIsInterrupted) {
    Interrupt::install();
    QTimer::singleShot(100, [] { ::raise(SIGINT); });
    EXPECT_LT(secondsOfSnooze(std::numeric_limits<double>::infinity()), 10.0);
    Interrupt::reset();
}

TEST_F(RunnerTest, FailuresSayThatNothingIsConnected) {
    Inspector::self()->setLastError(QString());
    EXPECT_FALSE(runner.waitForObjectByName("{type='Button'}", true, 0));
    EXPECT_EQ(Inspector::self()->lastError(), Inspector::noApplicationText);

    QString error;
    EXPECT_FALSE(runner.attachToApplication("editor", "elsewhere", -1, -1, &error));
    EXPECT_TRUE(error.contains("not on 'elsewhere'")) << qPrintable(error);

    EXPECT_FALSE(runner.startVideoCapture({}, nullptr).ok());
}

}  // namespace
}  // namespace Tamrix
