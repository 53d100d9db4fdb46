#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix::Test {

/// Runs of suites with the application "faulty". Afterwards, nothing may be left of them.
class ApplicationRun : public testing::Test {
protected:
    ApplicationRun() {
        suite.write("suite/config.xml",
                    "<suite><applications><application name='faulty' path='" FAULTY_TARGET
                    "'/></applications></suite>");
        prepare(runner);
    }
    ~ApplicationRun() override {
        EXPECT_EQ(leftProcesses(), QStringList());
        EXPECT_EQ(QDir(runtime.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                  QStringList());
    }

    void prepare(RunnerProcess& process) const {
        process.setVariable("QT_QPA_PLATFORM", "offscreen");
        process.setVariable("XDG_RUNTIME_DIR", runtime.path());
        process.setVariable("TAMRIX_TEST_MARK", runtime.path());
    }

    void addCase(const QString& name, const QByteArray& script) {
        suite.write("suite/" + name + "/test.py",
                    QByteArray("import os, signal, time\n") + clickOn + script);
    }

    /// Processes that came of the runner: the variable is in the environment of all of them.
    QStringList leftProcesses() const {
        const QByteArray mark = "TAMRIX_TEST_MARK=" + runtime.path().toLocal8Bit() + '\0';
        QStringList left;
        for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
            if (entry.toInt() > 0 && readFile("/proc/" + entry + "/environ").contains(mark))
                left.append(readFile("/proc/" + entry + "/cmdline").replace('\0', ' '));
        }
        return left;
    }

    /// The messages and details of a case's results.
    QString resultsOf(const QString& name) const {
        QString texts;
        bool isInside = false;
        for (const Json::Value& entry : readJournal(suite.path("results/journal.jsonl"))) {
            if (entry["kind"].asString() == "caseStart")
                isInside = QString::fromStdString(entry["message"].asString()) == name;
            if (isInside)
                texts += QString::fromStdString(entry.toStyledString());
        }
        return texts;
    }

    /// Defined in every script.
    static constexpr char clickOn[] = R"py(
def clickOn(text):
    button = waitForObject("{type='QPushButton' text='%s'}" % text, 60000)
    mousePress(button)
    mouseRelease(button)

)py";

    QTemporaryDir runtime;
    SuiteFolder suite;
    RunnerProcess runner;
};

}  // namespace Tamrix::Test
