// A program of several processes: lines say in which of them something was done.

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "agent/input/testdisplay.h"
#include "e2e/runnerprocess.h"
#include "platform/objectmodel/display/input.h"
#include "plugins/python/pythonrecorder.h"
#include "runner/recording/processesmerger.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::readFile;

/// Clicks on an object that is called by its process's number.
class Clicks {
public:
    explicit Clicks(int processes) {
        for (int process = 0; process < processes; ++process)
            m_merger.addProcess(QStringLiteral("shop_%1").arg(process));
    }
    void press(int process) {
        Wire::ObservedPress press;
        // Each process counts its objects by itself.
        press.object.handle = 1;
        press.object.name = {{{"name", 0, QString::number(process), nullptr}}, 1};
        m_merger.add(process, press, 0);
    }
    void doubleClick(int process) { m_merger.add(process, Wire::ObservedDoubleClick{}, 0); }
    void release(int process) { m_merger.add(process, Wire::ObservedRelease{}, 0); }
    void rest(int process) { m_merger.add(process, Wire::ObservedRest{}, 0); }
    void click(int process) {
        press(process);
        release(process);
        rest(process);
    }
    QStringList lines() {
        m_merger.finish();
        return m_lines;
    }

private:
    QStringList m_lines;
    ProcessesMerger m_merger{
        [this](const ScriptAction& action) {
            m_lines.append(NotatedRecorder(PythonPlugin::recordingNotation, QString())
                               .lines(action)
                               .trimmed());
        },
        [](const Wire::Query& name) {
            return QStringLiteral(":%1").arg(name.criteria.value(0).text);
        }};
};

TEST(ProcessesMerger, SwitchesBeforeWhatIsDoneElsewhere) {
    Clicks clicks(2);
    clicks.click(0);
    clicks.click(1);
    clicks.click(1);
    clicks.click(0);
    clicks.click(1);
    EXPECT_EQ(
        clicks.lines(),
        (QStringList{R"(click(":0"))", "setApplicationContext(waitForApplicationLaunch())",
                     R"(click(":1"))", R"(click(":1"))",
                     R"(setApplicationContext(applicationContext("shop_0")))", R"(click(":0"))",
                     R"(setApplicationContext(applicationContext("shop_1")))", R"(click(":1"))"}));
}

TEST(ProcessesMerger, TakesThoseThatCameBefore) {
    Clicks clicks(3);
    clicks.click(2);
    clicks.click(1);
    EXPECT_EQ(
        clicks.lines(),
        (QStringList{"waitForApplicationLaunch()",
                     "setApplicationContext(waitForApplicationLaunch())", R"(click(":2"))",
                     R"(setApplicationContext(applicationContext("shop_1")))", R"(click(":1"))"}));
}

TEST(ProcessesMerger, KeepsTheOrderOfWhatIsHeld) {
    // The rest behind the first click comes late.
    Clicks clicks(2);
    clicks.press(0);
    clicks.release(0);
    clicks.press(1);
    clicks.rest(0);
    clicks.release(1);
    EXPECT_EQ(clicks.lines(),
              (QStringList{R"(click(":0"))", "setApplicationContext(waitForApplicationLaunch())",
                           R"(click(":1"))"}));
}

TEST(ProcessesMerger, MakesNoDoubleClickAcrossWhatIsDoneElsewhere) {
    Clicks clicks(2);
    clicks.click(0);
    clicks.click(1);
    // Quick enough for the program to take it for the second half of a double click.
    clicks.press(0);
    clicks.doubleClick(0);
    clicks.release(0);
    clicks.rest(0);
    EXPECT_EQ(clicks.lines().filter("lick("),
              (QStringList{R"(click(":0"))", R"(click(":1"))", R"(click(":0"))"}));
}

bool waitUntil(const std::function<bool()>& isDone, int rounds = 1000) {
    for (int round = 0; round < rounds; ++round) {
        if (isDone())
            return true;
        ::usleep(20000);
    }
    return false;
}

TEST(RecordedProcesses, DoTheSameOnceMore) {
    const QString target = TAMRIX_TEST_PREFIX "/tests/targets/recorderpair_target";
    const QByteArray done = "First\nSecond\nFirst\n";
    const Tamrix::Test::SuiteFolder suite;
    TestDisplay display("xcb");
    const auto connection = Display::XConnection::open({display.name(), {}});
    ASSERT_TRUE(connection);
    const auto input = Display::Input::open(*connection);
    ASSERT_TRUE(input);
    const auto journal = [&] { return readFile(suite.path("journal")); };
    const auto script = [&] { return readFile(suite.path("suite/case/test.py")); };
    Tamrix::Test::RunnerProcess recorder;
    recorder.start({"record", "--aut-display", display.name(), "--suite", suite.path("suite"),
                    "--case", "case", target, suite.path("journal")});
    ASSERT_TRUE(recorder.waitForErrors("Recording;"));
    // Windows appear a moment after their agents have come.
    const auto click = [&](const QPoint& point) {
        const QByteArray before = journal();
        return waitUntil(
            [&] {
                EXPECT_TRUE(
                    (*input)->click(point, Wire::MouseStyle{Qt::LeftButton, Qt::NoModifier}, 1));
                return waitUntil([&] { return journal() != before; }, 250);
            },
            20);
    };
    const QPoint first(140, 90);
    const QPoint second(500, 90);
    ASSERT_TRUE(click(first));
    ASSERT_TRUE(recorder.waitForErrors(", too, which the program has started"));
    ASSERT_TRUE(click(second));
    ASSERT_TRUE(click(first));
    ASSERT_EQ(journal(), done);
    ASSERT_TRUE(waitUntil([&] { return script().count("click(") == 3; })) << script().constData();
    recorder.sendSignal(SIGINT);
    recorder.finish();
    EXPECT_EQ(script().count("setApplicationContext"), 2) << script().constData();
    ASSERT_TRUE(QFile::remove(suite.path("journal")));
    Tamrix::Test::RunnerProcess runner;
    runner.run({"run", suite.path("suite"), "--aut-display", "auto", "--result-dir",
                suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << script().constData();
    EXPECT_EQ(journal(), done) << script().constData();
}

}  // namespace
}  // namespace Tamrix
