// Many cases in one run: workers, retries, time-outs, orders.

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QRegularExpression>
#include <QStandardPaths>
#include <algorithm>
#include <csignal>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

class FarmRunTest : public testing::Test {
protected:
    void writeCase(const QString& name, const QByteArray& main, const QByteArray& more = {}) const {
        suite.write("suite/" + name + "/test.py",
                    "import os, signal, time\ndef main():\n    " + main + "\n" + more);
    }

    /// Without displays, which scripts alone do not need.
    RunnerProcess& run(const QStringList& options) {
        runner.run(QStringList{"run", suite.path("suite"), "--aut-display", "inherit",
                               "--result-dir", suite.path("results")} +
                   options);
        return runner;
    }

    /// What a case does before it takes too long.
    QByteArray there(const QString& name) const {
        return "open('" + suite.path("there_" + name).toUtf8() + "', 'w').close()\n    ";
    }

    /// Runs cases that end by their time-out, which is long enough for them to be there(). Returns
    /// it, in seconds.
    int runUntilThere(const QStringList& names, const QStringList& options) {
        for (const int seconds : {1, 4, 16, 64}) {
            for (const QString& name : names)
                QFile::remove(suite.path("there_" + name));
            QDir(suite.path("results")).removeRecursively();
            runner.takeOutput();
            runner.run(QStringList{"run", suite.path("suite"), "--result-dir",
                                   suite.path("results"), "--case-timeout",
                                   QString::number(seconds)} +
                       options);
            if (std::all_of(names.begin(), names.end(), [this](const QString& name) {
                    return QFile::exists(suite.path("there_" + name));
                }))
                return seconds;
        }
        ADD_FAILURE() << "the cases do not even begin";
        return 0;
    }

    QString journalText(const char* kind) const {
        return Tamrix::Test::messagesOf(
            Tamrix::Test::readJournal(suite.path("results/journal.jsonl")), kind);
    }

    /// What the summary counts: "3 cases: 3 passed".
    QString summary() const {
        const int begin = runner.output().lastIndexOf("\n\n");
        return runner.output().mid(begin + 2).section('\n', 0, 0);
    }

    bool leavesNothing() const {
        return QDir(suite.path("results")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot) ==
               QStringList{"journal.jsonl"};
    }

    Tamrix::Test::SuiteFolder suite;
    RunnerProcess runner;
};

TEST_F(FarmRunTest, WorkersRunAtOnceAndCasesStayInOnePiece) {
    // Each waits for all others: one after the other they would never end.
    const QByteArray meeting = suite.path("here").toUtf8();
    QDir().mkpath(meeting);
    for (const char* name : {"a", "b", "c", "d"}) {
        writeCase(name,
                  "open('" + meeting +
                      "/' + caseName(), 'w').close()\n"
                      "    while len(os.listdir('" +
                      meeting +
                      "')) < 4: time.sleep(0.01)\n"
                      "    for count in range(20): test.log(caseName()); time.sleep(0.005)",
                  "def caseName(): return os.path.basename(os.getcwd())\n");
    }
    run({"--jobs", "4", "--case-timeout", "60"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output() + runner.errors());
    EXPECT_EQ(summary(), "4 cases: 4 passed");
    QString open;
    int logs = 0;
    for (const auto& entry : Tamrix::Test::readJournal(suite.path("results/journal.jsonl"))) {
        const QString message = QString::fromStdString(entry["message"].asString());
        if (entry["kind"] == "caseStart") {
            EXPECT_EQ(open, QString());
            open = message;
        } else if (entry["kind"] == "result") {
            EXPECT_EQ(message, open);
            ++logs;
        } else if (entry["kind"] == "caseEnd") {
            open.clear();
        }
    }
    EXPECT_EQ(logs, 80);
    EXPECT_TRUE(leavesNothing());
}

TEST_F(FarmRunTest, AFailedCaseRunsAgainInAnotherProcess) {
    const QByteArray flag = suite.path("flag").toUtf8();
    writeCase("flaky",
              "test.log(str(os.getpid()))\n"
              "    if not os.path.exists('" +
                  flag +
                  "'):\n"
                  "        open('" +
                  flag + "', 'w').close(); test.fail('the first time')");
    writeCase("good", "pass");
    writeCase("bad", "test.fail('always')");
    run({"--retries", "2", "--report", "junit:" + suite.path("junit.xml")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    EXPECT_EQ(summary(), "3 cases: 1 passed, 1 flaky, 1 failed");
    EXPECT_EQ(journalText("caseStart").split(' ').count("bad"), 3);
    QStringList processes;
    for (const auto& entry : Tamrix::Test::readJournal(suite.path("results/journal.jsonl"))) {
        if (entry["kind"] == "result" && entry["type"] == 7)
            processes += QString::fromStdString(entry["message"].asString());
    }
    EXPECT_EQ(processes.size(), 2);
    EXPECT_EQ(processes.removeDuplicates(), 0) << "the second attempt needs a process of its own";
    const QString junit = QString::fromUtf8(Tamrix::Test::readFile(suite.path("junit.xml")));
    EXPECT_EQ(junit.count("<flakyFailure "), 1) << qPrintable(junit);
    EXPECT_EQ(junit.count("<rerunFailure "), 2) << qPrintable(junit);

    // What is flaky alone is a failure for whoever says so.
    for (const auto& [option, exitCode] : {std::pair("--quiet", 0), {"--fail-on-flaky", 1}}) {
        QFile::remove(flag);
        RunnerProcess again;
        again.run({"run", suite.path("suite"), "flaky", "--retries", "1", option});
        EXPECT_EQ(again.exitCode(), exitCode) << option;
    }
}

TEST_F(FarmRunTest, ACaseIsGivenBackOnceWhenItsProcessDies) {
    writeCase("crash", "test.log('before'); os._exit(3)");
    writeCase("good", "pass");
    run({"--jobs", "2"});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_EQ(summary(), "2 cases: 1 passed, 1 with errors");
    EXPECT_EQ(journalText("caseStart").split(' ').count("crash"), 2);
    EXPECT_EQ(runner.errors().count("the process that ran 'crash' has ended before its time: it "
                                    "exited with code 3"),
              2);
    EXPECT_TRUE(
        runner.output().contains("it exited with code 3; another process runs the test "
                                 "case again"))
        << qPrintable(runner.output());
}

TEST_F(FarmRunTest, WhatTakesTooLongIsEndedWhereItStandsAndTheRunGoesOn) {
    writeCase("busy", there("busy") + "inner()",
              "def inner():\n    while True: pass\n"
              "def cleanup(): test.log('cleaned up')\n");
    writeCase("z", "pass");
    const int seconds = runUntilThere({"busy"}, {"--aut-display", "inherit"});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_EQ(summary(), "2 cases: 1 passed, 1 with errors");
    EXPECT_TRUE(runner.output().contains(
        QString("busy/test.py:6: Error: The test case took longer than %1 s\n"
                "        It was ended where it stood\n"
                "        called from ")
            .arg(seconds)))
        << qPrintable(runner.output());
    EXPECT_TRUE(journalText("result").contains("cleaned up"));
}

TEST_F(FarmRunTest, WhatHasToBeKilledTellsWhereItStood) {
    // Catches what would end it; is in code of C that looks for no signal; waits there, without
    // the interpreter's lock.
    writeCase("catches", there("catches") + "inner()",
              "def inner():\n"
              "    while True:\n"
              "        try: time.sleep(100)\n"
              "        except BaseException: pass\n");
    writeCase("computes", there("computes") + "inner()", "def inner(): sum(iter(int, 1))\n");
    writeCase("waits", there("waits") + "inner()",
              "import ctypes\n"
              "def inner():\n"
              "    mask = (ctypes.c_ulong * 16)(1 << 9)\n"
              "    ctypes.CDLL(None).sigwait(mask, mask)\n");
    const int seconds = runUntilThere({"catches", "computes", "waits"},
                                      {"--jobs", "3", "--aut-display", "inherit"});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_EQ(summary(), "3 cases: 3 with errors");
    const QString output = runner.output();
    for (const char* place : {"catches/test.py:7", "computes/test.py:5", "waits/test.py:8"}) {
        const QString text =
            QStringLiteral(
                "%1: Error: The test case took longer than %2 s\n"
                "        It did not react when it was ended, so its process was killed\n"
                "        called from ")
                .arg(QLatin1String(place), QString::number(seconds));
        EXPECT_TRUE(output.contains(text)) << place << "\n" << qPrintable(output);
    }
    EXPECT_TRUE(leavesNothing());
}

TEST_F(FarmRunTest, AHungProgramIsShownAsItsDisplayShowsIt) {
    writeCase("hangs",
              "startApplication('/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/'\n"
              "                     'calculator/calculator')\n"
              "    waitForObject(\"{type='Button' text='7'}\")\n"
              "    os.kill(currentApplicationContext().pid(), signal.SIGSTOP)\n"
              "    signal.signal(signal.SIGINT, lambda *_: None)\n    " +
                  there("hangs") + "while True: pass");
    runUntilThere({"hangs"}, {"--jobs", "1"});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(runner.output().contains("hangs/test.py:9: Error: The script did not end"))
        << qPrintable(runner.output());
    QDirIterator pictures(suite.path("results"), {"*.png"}, QDir::Files,
                          QDirIterator::Subdirectories);
    ASSERT_TRUE(pictures.hasNext()) << qPrintable(runner.output());
    const QImage picture(pictures.next());
    const QRgb corner = picture.pixel(picture.width() - 1, picture.height() - 1);
    int others = 0;
    for (int x = 0; x < picture.width(); ++x)
        others += picture.pixel(x, 40) != corner;
    EXPECT_GT(others, 100) << "the program's window is not in the picture";
}

TEST_F(FarmRunTest, EndsAfterFailuresAndRepeatsWhatFailed) {
    for (const char* name : {"a", "b", "c"})
        writeCase(name, "test.fail('it')");
    writeCase("0", "pass");
    run({"--jobs", "1", "--max-failures", "2"});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_EQ(journalText("caseStart"), "0 a b");
    EXPECT_EQ(runner.errors(),
              "tamrixrunner: ended after 2 failed test cases: 1 test case(s) did not run\n");

    const QString journal = suite.path("failed.jsonl");
    ASSERT_TRUE(QFile::rename(suite.path("results/journal.jsonl"), journal));
    run({"--only-failed", journal, "--repeat", "2"});
    EXPECT_EQ(journalText("caseStart"), "a b a b");
    // The folder of the results will do, also the one to which the new ones go.
    run({"--only-failed", suite.path("results")});
    EXPECT_EQ(journalText("caseStart"), "a b");
    RunnerProcess wrong;
    wrong.run({"run", suite.path("suite"), "--only-failed", suite.path("none.jsonl")});
    EXPECT_EQ(wrong.exitCode(), 2);
    EXPECT_EQ(wrong.errors(),
              "tamrixrunner: there is no journal '" + suite.path("none.jsonl") + "'\n");
}

TEST_F(FarmRunTest, ARandomOrderIsRepeatedByItsSeedAndAHistoryPutsLongOnesFirst) {
    for (const char* name : {"a", "b", "c", "d", "e", "f"})
        writeCase(name, "pass");
    run({"--order", "random", "--history", suite.path("history")});
    const QString order = journalText("caseStart");
    const QRegularExpressionMatch seed =
        QRegularExpression("--order (random:[0-9]+) repeats it").match(runner.errors());
    ASSERT_TRUE(seed.hasMatch()) << qPrintable(runner.errors());
    run({"--order", seed.captured(1)});
    EXPECT_EQ(journalText("caseStart"), order);

    // Another journal counts as well, here one of a minute that nobody waited for.
    QByteArray journal =
        "{\"format\":\"tamrix-journal\",\"version\":1}\n"
        "{\"kind\":\"suiteStart\",\"message\":\"suite\"}\n";
    for (const auto& [name, end] : {std::pair("c", "00:20"), {"a", "00:01"}, {"b", "00:40"}}) {
        journal += QByteArray(
                       "{\"kind\":\"caseStart\",\"time\":\"2199-05-01T12:00:00.000+02:00\","
                       "\"message\":\"") +
                   name + "\"}\n{\"kind\":\"caseEnd\",\"time\":\"2199-05-01T12:" + end +
                   ".000+02:00\",\"extra\":\"finished\"}\n";
    }
    suite.write("history/earlier.jsonl", journal);
    run({"--order", "longest", "--history", suite.path("history")});
    EXPECT_TRUE(journalText("caseStart").startsWith("b c "))
        << qPrintable(journalText("caseStart") + runner.errors());
    QStringList ran;
    for (const char* shard : {"1/2", "2/2"}) {
        run({"--shard", shard, "--history", suite.path("history")});
        ran += journalText("caseStart").split(' ');
    }
    ran.sort();
    EXPECT_EQ(ran, (QStringList{"a", "b", "c", "d", "e", "f"}));
}

TEST_F(FarmRunTest, CtrlCEndsAllWorkersOnceAndReportsAreWhole) {
    for (const char* name : {"a", "b", "c"}) {
        writeCase(name,
                  "print('ready'); test.log('ready'); open('" + suite.path(name).toUtf8() +
                      "', 'w').close(); time.sleep(600)",
                  "def cleanup():\n    test.log('cleaned up')\n");
    }
    runner.start({"run", suite.path("suite"), "--jobs", "2", "--aut-display", "inherit",
                  "--result-dir", suite.path("results")});
    ASSERT_TRUE(Tamrix::Test::waitUntil(
        [&] { return QFile::exists(suite.path("a")) && QFile::exists(suite.path("b")); }));
    runner.sendSignal(SIGINT);
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 130) << qPrintable(runner.output());
    EXPECT_TRUE(runner.errors().endsWith("interrupted: 1 test case(s) did not run\n"))
        << qPrintable(runner.errors());
    EXPECT_EQ(journalText("result").count("cleaned up"), 2);
    EXPECT_EQ(summary(), "2 cases: 2 interrupted");
    EXPECT_TRUE(leavesNothing());
}

TEST_F(FarmRunTest, AKilledRunLeavesWhatCanBeReported) {
    writeCase("a", "test.log('done')");
    writeCase("b", "test.log('in the middle'); open('" + suite.path("b").toUtf8() +
                       "', 'w').close(); time.sleep(600)");
    runner.start({"run", suite.path("suite"), "--jobs", "1", "--aut-display", "inherit",
                  "--result-dir", suite.path("results")});
    ASSERT_TRUE(Tamrix::Test::waitUntil([&] { return QFile::exists(suite.path("b")); }));
    runner.sendSignal(SIGKILL);
    runner.finish();
    RunnerProcess report;
    report.run({"report", suite.path("results/journal.jsonl"), "--to",
                "console:" + suite.path("console.txt"), "--to",
                "json:" + suite.path("whole.jsonl")});
    EXPECT_EQ(report.exitCode(), 0) << qPrintable(report.errors());
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("console.txt"))
                    .contains("2 cases: 1 passed, 1 incomplete"));
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("whole.jsonl")).contains("in the middle"));
    // The next run has nothing to do with it.
    run({"a"});
    EXPECT_TRUE(leavesNothing());
}

TEST_F(FarmRunTest, EachCaseHasADisplayAndAHomeOfItsOwn) {
    const QByteArray program = "/bin/sh -c 'echo \"$HOME $TMPDIR $XDG_CONFIG_HOME $DISPLAY\" > " +
                               suite.path().toUtf8() + "/$0; exit 3' ";
    // Neither ends before the other one has begun.
    const QByteArray wait =
        "for _ in range(1200):\n        time.sleep(0.05)\n        if all("
        "os.path.exists('" +
        suite.path().toUtf8() + "/' + name) for name in 'ab'): break";
    for (const char* name : {"a", "b"}) {
        writeCase(name, "try: startApplication(\"\"\"" + program + name +
                            "\"\"\")\n    except Exception: pass\n    " + wait);
    }
    runner.run({"run", suite.path("suite"), "--jobs", "2"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output() + runner.errors());
    const QStringList a = QString::fromUtf8(Tamrix::Test::readFile(suite.path("a"))).split(' ');
    const QStringList b = QString::fromUtf8(Tamrix::Test::readFile(suite.path("b"))).split(' ');
    ASSERT_EQ(a.size(), 4);
    ASSERT_EQ(b.size(), 4);
    for (int index = 0; index < 4; ++index)
        EXPECT_NE(a.at(index), b.at(index));
    EXPECT_EQ(a.at(1), a.at(0) + "/tmp");
    EXPECT_EQ(a.at(2), a.at(0) + "/.config");
    EXPECT_FALSE(QDir(a.at(0)).exists());
}

TEST_F(FarmRunTest, AFarmFinishesWhatAKilledShardLeaves) {
    if (QStandardPaths::findExecutable("parallel").isEmpty())
        GTEST_SKIP() << "GNU parallel is not installed";
    QStringList names;
    for (int index = 0; index < 16; ++index) {
        names += QString("case%1").arg(index, 2, 10, QLatin1Char('0'));
        writeCase(names.back(), "time.sleep(0.05)");
    }
    // Ends the runner of its shard, once.
    const QByteArray flag = suite.path("flag").toUtf8();
    writeCase("case05", "if not os.path.exists('" + flag +
                            "'):\n"
                            "        open('" +
                            flag +
                            "', 'w').close()\n"
                            "        os.kill(os.getppid(), signal.SIGKILL); time.sleep(60)");
    writeCase("case07", "test.fail('it')");
    runner.run({"farm", suite.path("suite"), "--engine", "parallel", "--workers", "2",
                "--result-dir", suite.path("results"), "--report",
                "junit:" + suite.path("junit.xml")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.output() + runner.errors());
    EXPECT_EQ(summary(), "16 cases: 15 passed, 1 failed") << qPrintable(runner.output());
    QStringList ran = journalText("caseStart").split(' ');
    ran.sort();
    EXPECT_EQ(ran, names);
    EXPECT_TRUE(QFile::exists(flag));
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("junit.xml")).contains("tests=\"16\""));

    RunnerProcess script;
    script.run({"farm", suite.path("suite"), "--engine", "slurm", "--workers", "2", "--result-dir",
                suite.path("results"), "--print-script", "--retries", "1"});
    EXPECT_EQ(script.exitCode(), 0);
    EXPECT_TRUE(script.output().contains("#SBATCH --array=1-8%2\n")) << qPrintable(script.output());
    EXPECT_TRUE(script.output().contains(" --retries 1 \\\n    --shard \"$1/8\" "))
        << qPrintable(script.output());
}

}  // namespace
}  // namespace Tamrix
