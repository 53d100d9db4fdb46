// A runner that is killed leaves a journal from which all reports can be made.

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

class KilledRun : public testing::Test {
protected:
    KilledRun() {
        suite.write("suite/a/test.py", "def main():\n    test.fail('first')\n");
        suite.write("suite/c/test.py", "def main():\n    test.fail('behind it')\n");
    }

    /// Makes JUnit XML of what is left.
    QString junitFromJournal() {
        RunnerProcess report;
        report.run({"report", suite.path("journal.jsonl"), "--to",
                    "junit:" + suite.path("junit.xml"), "--to",
                    "console:" + suite.path("console.txt")});
        EXPECT_EQ(report.exitCode(), 0) << qPrintable(report.errors());
        return QString::fromUtf8(Tamrix::Test::readFile(suite.path("junit.xml")));
    }

    Tamrix::Test::SuiteFolder suite;
    RunnerProcess runner;
};

TEST_F(KilledRun, TheJournalHoldsEverythingUpToThen) {
    // The parent of the script's process is the one that was started.
    suite.write("suite/b/test.py",
                "import os, signal, time\n"
                "def main():\n"
                "    test.startSection('open')\n"
                "    for count in range(500):\n"
                "        test.log('entry %d' % count)\n"
                "    print('a line without end', end='')\n"
                "    test.pass_('the last one')\n"
                "    os.kill(os.getppid(), signal.SIGKILL)\n"
                "    time.sleep(600)\n");
    runner.run({"run", suite.path("suite"), "--report", "json:" + suite.path("journal.jsonl")});
    EXPECT_EQ(runner.exitCode(), -1 - SIGKILL);

    const auto entries = Tamrix::Test::readJournal(suite.path("journal.jsonl"));
    // suiteStart; start, fail and end of a; start of b, section, 500 logs, output, pass.
    ASSERT_EQ(entries.size(), 1u + 3u + 2u + 500u + 2u);
    EXPECT_EQ(entries.back()["message"], "the last one");
    EXPECT_EQ(entries[entries.size() - 2]["message"], "a line without end");

    const QString junit = junitFromJournal();
    EXPECT_TRUE(junit.contains("<testcase name=\"b\"")) << qPrintable(junit);
    EXPECT_TRUE(junit.contains("<testsuites tests=\"2\" failures=\"1\" errors=\"1\""))
        << qPrintable(junit.left(200));
    EXPECT_TRUE(junit.endsWith("</testsuites>\n"));
    const QString console = QString::fromUtf8(Tamrix::Test::readFile(suite.path("console.txt")));
    EXPECT_TRUE(console.contains("2 cases: 1 failed, 1 incomplete")) << qPrintable(console);
}

TEST_F(KilledRun, AJournalThatVanishesIsToldAtOnceAndTheRunGoesOn) {
    suite.write("suite/b/test.py", R"(
import os
def main():
    os.remove(os.environ["JOURNAL"])
    test.log("the first that is lost")
    os.write(2, b"MARK\n")
)");
    runner.setVariable("JOURNAL", suite.path("journal.jsonl"));
    runner.run({"run", suite.path("suite"), "--report", "json:" + suite.path("journal.jsonl"),
                "--report", "junit:" + suite.path("junit.xml")});
    EXPECT_EQ(runner.exitCode(), 2);
    EXPECT_EQ(runner.errors(),
              QString("tamrixrunner: The journal '%1' could not be written: the file was removed "
                      "or replaced; from now on nothing is recorded\nMARK\n")
                  .arg(suite.path("journal.jsonl")));
    EXPECT_TRUE(runner.output().contains("3 cases: 1 passed, 2 failed"))
        << qPrintable(runner.output());
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("junit.xml")).contains("behind it"));
}

TEST_F(KilledRun, AScriptThatEndsItsProcessIsTold) {
    const struct {
        const char* name;
        const char* end;
        QString text;
    } table[] = {
        {"_exit", "os._exit(0)", "it exited with code 0"},
        // What is torn down before its time may crash on the way out.
        {"exit of a library", "ctypes.CDLL(None).exit(0)", "it "},
        {"thread", "threading.Thread(target=lambda: os._exit(7)).start(); time.sleep(600)",
         "it exited with code 7"},
        {"signal", "os.kill(os.getpid(), signal.SIGSEGV)",
         "it was ended by SIGSEGV (Segmentation fault)"},
    };
    for (const auto& row : table) {
        suite.write("suite/b/test.py",
                    "import ctypes, os, signal, threading, time\n"
                    "def main():\n"
                    "    test.startSection('open')\n"
                    "    print('before')\n"
                    "    " +
                        QByteArray(row.end) + "\n");
        // With a journal of the user's own, and without.
        for (const bool hasJournal : {true, false}) {
            QStringList arguments = {"run", suite.path("suite"), "--report",
                                     "junit:" + suite.path("direct.xml")};
            if (hasJournal)
                arguments += {"--report", "json:" + suite.path("journal.jsonl")};
            RunnerProcess run;
            run.run(arguments);
            EXPECT_EQ(run.exitCode(), 2) << row.name;
            EXPECT_TRUE(run.errors().startsWith(
                "tamrixrunner: the process that ran the test cases ended before its time: " +
                row.text))
                << qPrintable(run.errors());
            EXPECT_EQ(run.errors().count('\n'), 1) << qPrintable(run.errors());
            // Each line stands there once, and the cases behind it run.
            const QString output = run.output();
            for (const char* text : {"Suite suite", "Fail: first", "before", "Fail: behind it",
                                     "3 cases: 2 failed, 1 with errors"})
                EXPECT_EQ(output.count(text), 1) << row.name << ": " << qPrintable(output);
            EXPECT_TRUE(output.contains("Error: The process of the run has ended"))
                << qPrintable(output);
            const QString junit =
                QString::fromUtf8(Tamrix::Test::readFile(suite.path("direct.xml")));
            EXPECT_TRUE(junit.contains("<testsuites tests=\"3\" failures=\"2\" errors=\"1\""))
                << qPrintable(junit.left(300));
            EXPECT_TRUE(junit.contains(row.text)) << qPrintable(junit);
        }
        const auto entries = Tamrix::Test::readJournal(suite.path("journal.jsonl"));
        const auto count = [&](const char* key, const char* value) {
            return std::count_if(entries.begin(), entries.end(),
                                 [&](const Json::Value& entry) { return entry[key] == value; });
        };
        EXPECT_EQ(count("message", "The process of the run has ended"), 1) << row.name;
        EXPECT_EQ(count("kind", "suiteStart"), 1) << row.name;
        EXPECT_EQ(count("kind", "caseEnd"), 3) << row.name;
        EXPECT_EQ(entries[entries.size() - 1]["kind"], "suiteEnd");
        EXPECT_NE(entries[entries.size() - 1]["interrupted"], true);
    }
}

TEST_F(KilledRun, ACaseThatSpoilsItsProcessLeavesTheOthersToAnotherOne) {
    suite.write("suite/b/test.tcl",
                "proc fill {text} {\n"
                "    eval \"set larger_than_tcl_has [string repeat {$text} 80]\"\n"
                "}\n"
                "proc main {} { fill [string repeat x 30000000] }\n"
                "proc cleanup {} { test log {never run} }\n");
    suite.write("suite/c/test.py", "def main():\n    test.pass_('in Python')\n");
    suite.write("suite/d/test.tcl", "proc main {} { test pass {in Tcl} }\n");
    const QString told = "Script Error\n        Tcl gave up: max size for a Tcl value";
    for (const QStringList& options : {QStringList(), QStringList{"--jobs", "1"}}) {
        RunnerProcess run;
        run.run(QStringList{"run", suite.path("suite"), "--aut-display", "inherit", "--verbose",
                            "--report", "json:" + suite.path("journal.jsonl"), "--report",
                            "junit:" + suite.path("direct.xml")} +
                options);
        // As any case with an error, and nothing is said twice.
        EXPECT_EQ(run.exitCode(), 1) << qPrintable(run.errors());
        EXPECT_EQ(run.errors(), "");
        const QString output = run.output();
        for (const QString& text :
             {QString("Suite suite"), QString("Fail: first"), told, QString("in Python"),
              QString("in Tcl"), QString("4 cases: 2 passed, 1 failed, 1 with errors")})
            EXPECT_EQ(output.count(text), 1) << qPrintable(text + "\n" + output);
        const QString junit = QString::fromUtf8(Tamrix::Test::readFile(suite.path("direct.xml")));
        EXPECT_TRUE(junit.contains("<testsuites tests=\"4\" failures=\"1\" errors=\"1\""))
            << qPrintable(junit.left(300));
        const auto entries = Tamrix::Test::readJournal(suite.path("journal.jsonl"));
        EXPECT_EQ(Tamrix::Test::messagesOf(entries, "suiteStart"), "suite");
        EXPECT_EQ(Tamrix::Test::messagesOf(entries, "caseStart"), "a b c d");
        EXPECT_EQ(entries.back()["kind"], "suiteEnd");
        EXPECT_NE(entries.back()["interrupted"], true);
        const auto error = std::find_if(entries.begin(), entries.end(), [](const auto& entry) {
            return entry["message"] == "Script Error";
        });
        ASSERT_NE(error, entries.end());
        EXPECT_EQ((*error)["callStack"][0]["line"], 2) << (*error).toStyledString();
    }
    // The cases that have failed count for both processes.
    runner.run({"run", suite.path("suite"), "--max-failures", "2", "--quiet"});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(runner.errors().contains("2 test case(s) did not run"))
        << qPrintable(runner.errors());
}

TEST_F(KilledRun, FromOutsideAtAnyMoment) {
    suite.write("suite/b/test.py",
                "def main():\n"
                "    print('ready')\n"
                "    while True:\n"
                "        test.log('x' * 1000)\n");
    runner.start({"run", suite.path("suite"), "--report", "json:" + suite.path("journal.jsonl")});
    ASSERT_TRUE(runner.waitForOutput("ready"));
    runner.sendSignal(SIGKILL);
    runner.finish();
    EXPECT_EQ(runner.exitCode(), -1 - SIGKILL);
    EXPECT_TRUE(junitFromJournal().contains("<testcase name=\"b\""));
}

TEST_F(KilledRun, ALineThatWasCutIsToldAndLeftOut) {
    suite.write("suite/b/test.py", "def main():\n    test.fail('second')\n");
    runner.run(
        {"run", suite.path("suite"), "a", "b", "--report", "json:" + suite.path("journal.jsonl")});
    const QByteArray journal = Tamrix::Test::readFile(suite.path("journal.jsonl"));
    suite.write("journal.jsonl", journal.left(journal.indexOf("second") + 3));
    RunnerProcess report;
    report.run({"report", suite.path("journal.jsonl"), "--to", "console:-"});
    EXPECT_EQ(report.exitCode(), 0);
    EXPECT_EQ(report.errors(), "tamrixrunner: '" + suite.path("journal.jsonl") +
                                   "' ends inside an entry: its run was killed while writing it\n");
    EXPECT_TRUE(report.output().contains("Fail: first"));
    EXPECT_FALSE(report.output().contains("sec"));
}

}  // namespace
}  // namespace Tamrix
