// Programs that no agent comes into, driven by their windows on an X display: with and without a
// window manager, and what is told when they, or the display, go away.

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "agent/input/testdisplay.h"
#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::RunnerProcess;

class DisplayRun : public testing::Test {
protected:
    DisplayRun() { runner.setVariable("HOME", results.path()); }

    void run(const QString& display, const QStringList& cases) {
        const QString suite = TAMRIX_TEST_SOURCE_DIR "/tests/e2e/suites/display";
        runner.run(
            QStringList{"run", suite, "--result-dir", results.path(), "--aut-display", display} +
            cases);
    }
    /// Message and detail of what the script has logged, and of what the run has noticed.
    QString told() const {
        QString lines;
        for (const Json::Value& entry :
             Tamrix::Test::readJournal(results.filePath("journal.jsonl"))) {
            const bool isText = entry["kind"].asString() == "result" && entry["type"] != 10;
            if (isText && !entry["detail"].asString().empty()) {
                lines += QString::fromStdString(entry["message"].asString() + "\n    " +
                                                entry["detail"].asString())
                             .section("\nThe last lines of its standard error", 0, 0) +
                         '\n';
            }
        }
        return lines;
    }

    static QString normalised(const QString& text) {
        Tamrix::Test::Normaliser normaliser;
        normaliser.path(TAMRIX_TEST_SOURCE_DIR, "<SOURCES>")
            .pattern("display ':\\d+'", "display '<DISPLAY>'");
        return normaliser(text);
    }

    QTemporaryDir results;
    RunnerProcess runner;
    const QStringList driving{"calculator", "dialog", "terminal", "windows"};
};

TEST_F(DisplayRun, ProgramsAreDrivenWithoutWindowManager) {
    run("auto", driving);
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << qPrintable(runner.errors());
}

TEST_F(DisplayRun, ProgramsAreDrivenWithWindowManager) {
    TestDisplay display("xcb");
    QProcess manager;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", display.name());
    environment.insert("HOME", results.path());
    manager.setProcessEnvironment(environment);
    manager.start("openbox", {"--sm-disable"});
    ASSERT_TRUE(manager.waitForStarted());
    // It manages windows once it says so.
    QByteArray root;
    for (int look = 0; look < 200 && !root.contains("window id"); ++look) {
        QProcess properties;
        properties.setProcessEnvironment(environment);
        properties.start("xprop", {"-root", "_NET_SUPPORTING_WM_CHECK"});
        properties.waitForFinished();
        root = properties.readAllStandardOutput();
    }
    ASSERT_TRUE(root.contains("window id"));
    run(display.name(), driving);
    EXPECT_EQ(manager.state(), QProcess::Running);
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << qPrintable(runner.errors());
    manager.terminate();
    manager.waitForFinished();
}

TEST_F(DisplayRun, TheExampleRuns) {
    const QString suite = TAMRIX_TEST_SOURCE_DIR "/examples/suite_otherprograms";
    runner.run({"run", suite, "--result-dir", results.path(), "--aut-display", "auto"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << qPrintable(runner.errors());
}

TEST_F(DisplayRun, WhatCanNotBeDoneIsTold) {
    run("auto", {"faults"});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    EXPECT_TRUE(Tamrix::Test::compareWithGolden("e2e/display_faults.txt", normalised(told())));
}

TEST_F(DisplayRun, TheServersEndIsTold) {
    run("auto", {"server_lost"});
    const QString text = told();
    for (const char* const part :
         {"title\n", "The connection to the display ':", "has ended",
          "click\n    The connection to the application 'survivor' has ended: ",
          "running\n    True"})
        EXPECT_TRUE(text.contains(part)) << part << qPrintable(text);
}

}  // namespace
}  // namespace Tamrix
