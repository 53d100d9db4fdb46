// What goes wrong with applications is told, the run goes on, and nothing stays behind.

#include <gtest/gtest.h>

#include <QFile>
#include <QThread>
#include <csignal>

#include "e2e/applicationrun.h"

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
         "test.log('dialog')\n    waitForObject(\"{text='Crash'}\", 2000)",
         {"dialog", "is not ready after 2000 ms", "modal"}},
        {"disabled",
         "waitForObject(\"{text='Disabled'}\", 2000)",
         {"Object '{text='Disabled'}' is not ready after 2000 ms: it is disabled"}},
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
        for (int round = 0; round < 6000 && !leftProcesses().isEmpty(); ++round)
            QThread::msleep(10);
        const QString display = run.output().section("ready :", 1).section('\n', 0, 0).trimmed();
        EXPECT_FALSE(QFile::exists("/tmp/.X11-unix/X" + display)) << qPrintable(display);
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
    addCase("shown",
            "def main():\n    a = startApplication('faulty')\n"
            "    waitForObject(\"{type='QLabel'}\")\n"
            "    test.log(a.environmentVariable('QT_QPA_PLATFORM'))\n"
            "    test.fail('look')\n");
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results"), "--aut-display",
                "auto"});
    EXPECT_TRUE(resultsOf("shown").contains("xcb"));
    EXPECT_TRUE(QFile::exists(suite.path("results/suite/shown/attachments/screenshot_fail_1.png")));
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
