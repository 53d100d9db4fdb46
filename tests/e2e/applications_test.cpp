// What goes wrong with applications is told, the run goes on, and nothing stays behind.

#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <csignal>

#include "e2e/applicationrun.h"
#include "platform/testresult/testresult.h"
#include "support/golden.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Test::ApplicationRun;
using Test::RunnerProcess;

TEST_F(ApplicationRun, FaultsAreTold) {
    const struct {
        const char* name;
        const char* script;
        QStringList texts;
    } table[] = {
        {"crash",
         "clickOn('Crash')\n    waitForObject(\"{type='QPushButton' text='x'}\")",
         {"SIGSEGV", "about to start", "faulty-stderr.txt"}},
        {"exit",
         "clickOn('Exit')\n    waitForObject(\"{type='QPushButton' text='x'}\")",
         {"it exited with code 3"}},
        {"frozen", "test.log('frozen %s' % a.isFrozen(2147484))", {"frozen False"}},
        {"kill",
         "os.kill(a.pid(), signal.SIGKILL)\n    object.exists(\"{type='QLabel'}\")\n    "
         "test.log('alive %s' % a.isRunning())\n    a.detach()",
         {"alive False", "detach() failed"}},
        {"stop",
         "os.kill(a.pid(), signal.SIGSTOP)\n    test.log('frozen %s' % a.isFrozen(1))\n    "
         "waitForObject(\"{type='QLabel'}\", 1500)",
         {"frozen True", "does not answer"}},
        {"hang",
         "clickOn('Hang')\n    waitForObject(\"{type='QLabel'}\", 1500)",
         {"does not answer"}},
        {"modal",
         "clickOn('Modal')\n    waitForObject(\"{text='Close it'}\")\n    "
         "test.log('dialog')\n    waitForObject(\"{text='Crash'}\", 4000)",
         {"dialog", "is not ready after 4000 ms", "modal"}},
        {"disabled",
         "waitForObject(\"{text='Disabled'}\", 4000)",
         {"Object '{text='Disabled'}' is not ready after 4000 ms: it is disabled"}},
        {"markers",
         "waitForObject(\"{text='http%3A%2F%2Fx'}\", 2000)",
         {"Object '{text='http%3A%2F%2Fx'}' not found within 2000 ms. "}},
        {"fork",
         "clickOn('Fork')\n    waitForObject(\"{text='Crash'}\")\n    test.log('there')",
         {"there"}},
        {"child",
         "clickOn('Child')\n    c = waitForApplicationLaunch(60000)\n    "
         "setApplicationContext(c)\n    waitForObject(\"{text='label of child'}\")\n    "
         "test.log('child of %s %s' % (c.pid() != a.pid(), len(applicationContextList())))",
         {"child of True 2"}},
        {"stubborn", "startApplication('faulty stubborn')\n    test.log('started')", {"started"}},
        {"much",
         "b = startApplication('faulty much')\n    "
         "waitFor(lambda: b.readStdout().endswith('the end\\n'), 60000)\n    "
         "test.log('read', b.readStdout()[-8:])\n    test.fail('so it is attached')",
         {"the end", "faulty-stdout.txt"}},
        {"again", "test.log('still', waitForObject(\"{type='QLabel'}\").text)", {"label of"}},
    };
    for (const auto& row : table) {
        addCase(row.name, "def main():\n    a = startApplication('faulty')\n    " +
                              QByteArray(row.script) + "\n");
    }
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    for (const auto& row : table) {
        const QString results = resultsOf(row.name);
        for (const QString& text : row.texts)
            EXPECT_TRUE(results.contains(text)) << row.name << ": " << qPrintable(results);
    }
}

TEST_F(ApplicationRun, WhatEventHandlersRaiseIsTold) {
    for (const char* name : {"raising", "skipping_in_wait", "skipping_between_calls"}) {
        const QString path = QString("/tests/e2e/suites/handlers/%1/test.py").arg(name);
        suite.write(QString("suite/%1/test.py").arg(name),
                    Tamrix::Test::readFile(TAMRIX_TEST_SOURCE_DIR + path));
    }
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << qPrintable(runner.errors());
    EXPECT_TRUE(runner.output().contains("1 passed, 2 skipped")) << qPrintable(runner.output());

    std::vector<int> lines;
    for (const Json::Value& entry :
         Tamrix::Test::readJournal(suite.path("results/journal.jsonl"))) {
        if (entry["type"] == 14)
            lines.push_back(entry["callStack"][0]["line"].asInt());
    }
    EXPECT_EQ(lines, (std::vector{2, 6}));
    EXPECT_TRUE(resultsOf("raising").contains("ValueError: in a callable"));
    EXPECT_TRUE(resultsOf("skipping_in_wait").contains("cleaned up"));
}

TEST_F(ApplicationRun, ExpectationsWaitAndTellWhatTheySawLast) {
    addCase("expect", R"(
def main():
    startApplication('faulty')
    label = {"type": "QLabel"}
    test.expect({"text": "Disabled"}, {"enabled": False, "type": "QPushButton"})
    test.expect(label, {"text*": "label *"}, comment="a wildcard")
    clickOn("Rename later")
    test.expect(label, "{text~='^re.*d$'}", 60000)
    test.expect({"text": "Disabled"}, {"enabled": True, "visible": True, "colour": "red"}, 2000)
    known = waitForObject(label)
    test.expect(known, {"text": "%1"}, 2000)
    clickOn("Remove later")
    test.expect(label, {"text": "x"}, 3000, "removed")
    test.expect(known, {"text": "x"})
    test.expect({"text": "none"}, {"enabled": True}, 2000)
    clickOn("Crash")
    test.expect({"text": "Crash"}, {"enabled": False})
)");
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    // How often it passes and how it fails.
    QStringList failures;
    int passes = 0;
    for (const Json::Value& entry :
         Tamrix::Test::readJournal(suite.path("results/journal.jsonl"))) {
        if (entry["type"].asInt() == TestResult::Pass)
            ++passes;
        if (entry["type"].asInt() == TestResult::Fail)
            failures.append(QString::fromStdString(entry["detail"].asString()));
    }
    EXPECT_EQ(passes, 3);
    const char* const patterns[] = {
        R"(^Object '\{text='Disabled'\}' is not as expected after 2000 ms: it has no colour, wanted )"
        R"('red'; enabled is 'false', wanted 'true', for the last \d{3,} ms$)",
        R"(^The QLabel is not as expected after 2000 ms: text is 'renamed', wanted '%1', for the )"
        R"(last \d{3,} ms$)",
        R"(^Object '\{type='QLabel'\}' not found within 3000 ms\. No object matches )"
        R"(\{type='QLabel'\}.* It was there until \d{3,} ms before: text is 'renamed', wanted 'x'$)",
        "^the QLabel does not exist any more$",
        R"(^Object '\{text='none'\}' not found within 2000 ms)",
        "SIGSEGV",
    };
    ASSERT_EQ(failures.size(), static_cast<int>(std::size(patterns)))
        << qPrintable(failures.join('\n'));
    for (std::size_t index = 0; index < std::size(patterns); ++index) {
        const QString& failure = failures[static_cast<int>(index)];
        EXPECT_TRUE(failure.contains(QRegularExpression(patterns[index]))) << qPrintable(failure);
    }
}

TEST_F(ApplicationRun, FailedStartsAreTold) {
    const struct {
        const char* program;
        int timeout;
        const char* text;
    } table[] = {
        {"faulty early", 60000,
         "it exited with code 7\\nThe last lines of its standard error:\\n"
         "about to start\\nno configuration"},
        {"faulty silent", 1500, "no agent in it connected within 1500 ms"},
        {"faulty version", 60000, "version 99"},
        {"faulty token", 60000, "shows a token that is not of this run"},
        {"faulty garbage", 5000, "a message of"},
        {"none-such", 60000, "'none-such' was not found"},
    };
    for (const auto& row : table) {
        addCase(QString(row.program).replace(' ', '_'),
                QString("def main():\n    startApplication('%1', '', -1, %2)\n")
                    .arg(row.program, QString::number(row.timeout))
                    .toUtf8());
    }
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    for (const auto& row : table) {
        const QString results = resultsOf(QString(row.program).replace(' ', '_'));
        EXPECT_TRUE(results.contains(row.text)) << row.program << ": " << qPrintable(results);
    }
}

TEST_F(ApplicationRun, NothingStaysOfARunThatIsKilledOrInterrupted) {
    addCase("wait",
            "def main():\n    a = startApplication('faulty')\n    clickOn('Fork')\n"
            "    waitForObject(\"{type='QLabel'}\")\n"
            "    print('ready ' + a.environmentVariable('DISPLAY'))\n"
            "    waitForObject(\"{text='never'}\", 60000)\n");
    for (const int signal : {SIGKILL, SIGTERM}) {
        RunnerProcess run;
        prepare(run);
        run.start({"run", suite.path("suite"), "--aut-display", "auto"});
        ASSERT_TRUE(run.waitForOutput("ready :")) << qPrintable(run.output() + run.errors());
        run.sendSignal(signal);
        run.finish();
        EXPECT_EQ(run.exitCode(), signal == SIGKILL ? -1 - SIGKILL : 143);
        // The watch of a killed run ends behind it.
        EXPECT_TRUE(Tamrix::Test::waitUntil([&] { return leftProcesses().isEmpty(); }));
        const QString display = run.output().section("ready :", 1).section('\n', 0, 0).trimmed();
        // Somebody else's display may have the number meanwhile.
        const int server = Tamrix::Test::readFile("/tmp/.X" + display + "-lock").trimmed().toInt();
        EXPECT_TRUE(!QFile::exists("/tmp/.X11-unix/X" + display) ||
                    (server > 0 && QFile::exists("/proc/" + QString::number(server))))
            << qPrintable(display);
    }
}

TEST_F(ApplicationRun, WhatAKilledRunAndItsWatchLeftIsClearedByTheNext) {
    addCase("wait", R"py(
def main():
    startApplication('faulty')
    clickOn('Fork')
    waitForObject("{type='QLabel'}")
    print('ready', flush=True)
    waitForObject("{text='never'}", 60000)
)py");
    addCase("next", "def main():\n    startApplication('faulty')\n");
    RunnerProcess killed;
    prepare(killed);
    killed.start({"run", suite.path("suite"), "wait"});
    ASSERT_TRUE(killed.waitForOutput("ready")) << qPrintable(killed.output() + killed.errors());
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
        const QByteArray process = "/proc/" + entry.toLatin1();
        const bool isOurs = Tamrix::Test::readFile(process + "/environ")
                                .contains("TAMRIX_TEST_MARK=" + runtime.path().toLocal8Bit());
        if (isOurs && Tamrix::Test::readFile(process + "/cmdline").contains("/tamrixwatch"))
            ::kill(entry.toInt(), SIGKILL);
    }
    killed.sendSignal(SIGKILL);
    killed.finish();
    EXPECT_FALSE(leftProcesses().isEmpty());
    EXPECT_EQ(QDir(runtime.path()).entryList({"tamrix-*"}).size(), 1);

    runner.run({"run", suite.path("suite"), "next"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output() + runner.errors());
}

TEST_F(ApplicationRun, APrivateDisplayShowsAFailuresMoment) {
    addCase("shown", R"(
def main():
    a = startApplication("faulty")
    button = waitForObject("{type='QPushButton' text='Modal'}")
    click(waitForObject(button))
    waitForObject("{text='Close it'}")
    test.log(a.environmentVariable('QT_QPA_PLATFORM'))
    test.fail("look")
    test.fail("and again")
)");
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results"), "--aut-display",
                "auto"});
    EXPECT_TRUE(resultsOf("shown").contains("xcb"));
    const QString folder = suite.path("results/suite/shown/attachments/");
    const QImage whole(folder + "screenshot_fail_1.png");
    const QImage windows(folder + "windows.png");
    EXPECT_EQ(whole.size(), QSize(1280, 1024));
    EXPECT_LT(windows.width(), 1000);
    EXPECT_GT(windows.width(), 20);
    int red = 0;
    for (int y = 0; y < windows.height(); ++y)
        for (int x = 0; x < windows.width(); ++x)
            red += windows.pixelColor(x, y) == QColor(Qt::red);
    EXPECT_GT(red, 50) << "the click is marked";
    // Both failures have the objects, which are the same.
    EXPECT_TRUE(Tamrix::Test::readFile(folder + "objects.json").contains("Close it"));
    EXPECT_FALSE(QFile::exists(folder + "objects_1.json"));
    EXPECT_FALSE(QFile::exists(folder + "windows_1.png"));
    QStringList actions;
    QStringList attachments;
    for (const Json::Value& entry :
         Tamrix::Test::readJournal(suite.path("results/journal.jsonl"))) {
        const QString message = QString::fromStdString(entry["message"].asString());
        if (entry["kind"] == "action")
            actions += message + ' ' + QString::fromStdString(entry["detail"].asString()) + ' ' +
                       QString::number(entry["callStack"][0]["line"].asInt());
        if (entry["kind"] == "attachment" && entry["extra"] == "result")
            attachments += QString::number(entry["type"].asInt());
    }
    EXPECT_EQ(actions.join('\n'),
              "startApplication \"faulty\" 10\n"
              "waitForObject \"{type='QPushButton' text='Modal'}\" 11\n"
              "waitForObject {type='QPushButton' text='Modal'} 12\n"
              "click {type='QPushButton' text='Modal'} 12\n"
              "waitForObject \"{text='Close it'}\" 13");
    EXPECT_EQ(attachments.join(' '), "2 4 2 4");
    // The same again without actions.
    RunnerProcess without;
    prepare(without);
    without.run(
        {"run", suite.path("suite"), "--result-dir", suite.path("results"), "--no-actions"});
    EXPECT_FALSE(resultsOf("shown").contains("\"action\""));
}

TEST_F(ApplicationRun, InspectPrintsNamesThatFind) {
    runner.run({"inspect", "--wait", "0.3", FAULTY_TARGET, "--json"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    const QString line = "QPushButton \"Disabled\" (disabled)  ";
    ASSERT_TRUE(runner.output().contains(line)) << qPrintable(runner.output());
    const QString name = runner.output().section(line, 1).section('\n', 0, 0);
    addCase("found",
            "def main():\n    startApplication('faulty --json')\n    test.compare(object.exists(" +
                ("\"" + name + "\"").toUtf8() +
                "), True)\n"
                "    waitForObject(\"{text='label of --json'}\")\n");
    RunnerProcess run;
    prepare(run);
    run.run({"run", suite.path("suite")});
    EXPECT_EQ(run.exitCode(), 0) << qPrintable(run.output() + run.errors());
}

TEST_F(ApplicationRun, InspectTellsTheNamesOfOneObject) {
    const struct {
        const char* what;
        QString object;
        int exitCode;
    } rows[] = {
        {"one that is named", "{text='Disabled'}", 0},
        {"one of several", "{type='QPushButton' occurrence='2'}", 0},
        {"the one at a point", "5,5", 0},
        {"none", "{text='Disable' type='QPushButton'}", 1},
        {"nothing at a point", "-5000,5", 1},
        {"no name", "Disabled", 2},
    };
    QString texts;
    for (const auto& row : rows) {
        RunnerProcess inspection;
        prepare(inspection);
        inspection.run(
            {"inspect", "--wait", "0.3", "--names", row.object, FAULTY_TARGET, "of names"});
        EXPECT_EQ(inspection.exitCode(), row.exitCode) << qPrintable(inspection.errors());
        texts += QString("# %1: %2\n%3%4\n")
                     .arg(row.what, row.object, inspection.output(), inspection.errors());
    }
    const auto normalised =
        Tamrix::Test::Normaliser().pattern("at -?\\d+,-?\\d+, \\d+x\\d+", "at X,Y, WxH");
    EXPECT_TRUE(Tamrix::Test::compareWithGolden("e2e/names.txt", normalised(texts)));
}

TEST_F(ApplicationRun, AFaultyMapOfNamesEndsTheRunBeforeItStarts) {
    addCase("never", "def main():\n    test.log('ran')\n");
    suite.write("suite/shared/objectnames.tsv", ":A\t{type='A'}\n:B {type='B'}\n");
    runner.run({"run", suite.path("suite")});
    EXPECT_EQ(runner.exitCode(), 2);
    EXPECT_TRUE(runner.errors().contains("objectnames.tsv, line 2")) << qPrintable(runner.errors());
}

TEST_F(ApplicationRun, AttachesToAProgramAndLeavesItThere) {
    RunnerProcess keeper;
    prepare(keeper);
    keeper.start({"attachable", "--name", "kept", FAULTY_TARGET, "of the keeper"});
    addCase("attach",
            "def main():\n"
            "    end = time.time() + 60\n"
            "    while True:\n"
            "        try:\n"
            "            a = attachToApplication('kept')\n"
            "            break\n"
            "        except RuntimeError as error:\n"
            "            if time.time() > end:\n"
            "                raise\n"
            "            snooze(0.1)\n"
            "    waitForObject(\"{text='label of of the keeper'}\")\n"
            "    a.detach()\n"
            "    test.log('pid %d' % a.pid())\n");
    for (const char* results : {"results", "again"}) {
        RunnerProcess run;
        prepare(run);
        run.run({"run", suite.path("suite"), "--result-dir", suite.path(results)});
        EXPECT_EQ(run.exitCode(), 0) << qPrintable(run.output() + run.errors());
    }
    EXPECT_FALSE(leftProcesses().isEmpty());
    keeper.sendSignal(SIGTERM);
    keeper.finish();
    EXPECT_EQ(keeper.exitCode(), 143) << qPrintable(keeper.errors());
    QDir(runtime.path()).rmdir("tamrix-attachable");
}

}  // namespace
}  // namespace Tamrix
