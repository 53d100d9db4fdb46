// Ctrl-C and its relatives.

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <csignal>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

/// Runs a suite whose case "b" waits for a signal between two others.
class InterruptedRun : public testing::Test {
protected:
    InterruptedRun() {
        suite.write("suite/a/test.py", "def main():\n    test.pass_('before')\n");
        suite.write("suite/c/test.py", "def main():\n    test.fail('must not run')\n");
    }

    /// `starter` is a program that becomes the runner.
    void start(const QByteArray& script, const QString& starter = {}) {
        suite.write("suite/b/test.py", script);
        QStringList arguments = {"run",          suite.path("suite"),
                                 "--result-dir", suite.path("results"),
                                 "--report",     "junit:" + suite.path("junit.xml")};
        if (!starter.isEmpty()) {
            arguments.prepend(TAMRIX_TEST_PREFIX "/bin/tamrixrunner");
            runner.setProgram(starter);
        }
        runner.start(arguments);
        ASSERT_TRUE(runner.waitForOutput("ready")) << qPrintable(runner.output() + runner.errors());
    }

    /// Checks that the run ended as interrupted in case "b" with whole reports.
    void expectInterrupted(int exitCode) {
        runner.finish();
        EXPECT_EQ(runner.exitCode(), exitCode) << qPrintable(runner.output());
        EXPECT_TRUE(
            runner.errors().endsWith("tamrixrunner: interrupted: 1 test case(s) did not run\n"))
            << qPrintable(runner.errors());
        const auto entries = Tamrix::Test::readJournal(suite.path("results/journal.jsonl"));
        EXPECT_EQ(Tamrix::Test::messagesOf(entries, "caseStart"), QString("a b"));
        ASSERT_GE(entries.size(), 2u);
        EXPECT_EQ(entries[entries.size() - 2]["kind"], "caseEnd");
        EXPECT_EQ(entries[entries.size() - 2]["extra"], "interrupted");
        EXPECT_EQ(entries[entries.size() - 1]["kind"], "suiteEnd");
        EXPECT_EQ(entries[entries.size() - 1]["extra"], "interrupted");
        const QString junit = QString::fromUtf8(Tamrix::Test::readFile(suite.path("junit.xml")));
        EXPECT_TRUE(junit.endsWith("</testsuites>\n")) << qPrintable(junit);
        EXPECT_FALSE(junit.contains("must not run"));
    }

    Tamrix::Test::SuiteFolder suite;
    RunnerProcess runner;
};

TEST_F(InterruptedRun, WhileTheScriptSleeps) {
    start(
        "import time\n"
        "def main():\n"
        "    print('ready'); time.sleep(600)\n"
        "def cleanup():\n"
        "    test.log('cleaned up')\n");
    runner.sendSignal(SIGINT);
    expectInterrupted(130);
    // The script gets the exception of its language, at the line that it waits in.
    EXPECT_TRUE(
        runner.output().contains("b/test.py:3: Error: Script Error\n"
                                 "        KeyboardInterrupt"))
        << qPrintable(runner.output());
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("results/journal.jsonl")).contains("cleaned up"));
}

TEST_F(InterruptedRun, InABusyLoop) {
    start(
        "def main():\n"
        "    print('ready')\n"
        "    while True:\n"
        "        pass\n");
    runner.sendSignal(SIGINT);
    expectInterrupted(130);
}

TEST_F(InterruptedRun, WhileTheScriptLoads) {
    start(
        "import time\n"
        "print('ready')\n"
        "time.sleep(600)\n");
    runner.sendSignal(SIGINT);
    expectInterrupted(130);
}

TEST_F(InterruptedRun, ByTermination) {
    start(
        "import time\n"
        "def main():\n"
        "    print('ready')\n"
        "    time.sleep(600)\n");
    runner.sendSignal(SIGTERM);
    expectInterrupted(143);
}

TEST_F(InterruptedRun, WhenTheTerminalGoesAway) {
    start(R"py(
import time
def main():
    print('ready')
    time.sleep(600)
def cleanup():
    test.log('cleaned up')
)py");
    runner.sendSignal(SIGHUP);
    expectInterrupted(129);
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("results/journal.jsonl")).contains("cleaned up"));
}

TEST_F(InterruptedRun, OnceByASignalToAllItsProcesses) {
    start(R"py(
import time
def main():
    print('ready')
    time.sleep(600)
def cleanup():
    time.sleep(0.5)
    test.log('cleaned up')
)py",
          "setsid");
    runner.sendSignalToGroup(SIGTERM);
    expectInterrupted(143);
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("results/journal.jsonl")).contains("cleaned up"));
}

TEST_F(InterruptedRun, AlthoughTheScriptCatchesTheInterrupt) {
    start(
        "import time\n"
        "def main():\n"
        "    try:\n"
        "        print('ready')\n"
        "        time.sleep(600)\n"
        "    except KeyboardInterrupt:\n"
        "        test.pass_('caught')\n");
    runner.sendSignal(SIGINT);
    expectInterrupted(130);
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("results/journal.jsonl")).contains("caught"));
}

TEST_F(InterruptedRun, TheThirdSignalEndsWhatIgnoresTheOthers) {
    start(
        "import time\n"
        "def main():\n"
        "    for count in range(100):\n"
        "        try:\n"
        "            print('ready', count)\n"
        "            time.sleep(600)\n"
        "        except KeyboardInterrupt:\n"
        "            pass\n");
    runner.sendSignal(SIGINT);
    ASSERT_TRUE(runner.waitForOutput("ready 1"));
    runner.sendSignal(SIGINT);
    ASSERT_TRUE(runner.waitForOutput("ready 2"));
    runner.sendSignal(SIGINT);
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 130);
    // Without an end, but with all that happened.
    const auto entries = Tamrix::Test::readJournal(suite.path("results/journal.jsonl"));
    EXPECT_EQ(Tamrix::Test::messagesOf(entries, "output"),
              QString("ready 0\n ready 1\n ready 2\n"));
}

TEST_F(InterruptedRun, BehindCasesInOtherLanguages) {
    const struct {
        const char* suffix;
        const char* plugin;
        QByteArray sleeping;
    } languages[] = {
        {"py", "tamrixpython-3",
         "import time\ndef main():\n    print('ready')\n    time.sleep(600)\n"},
        {"js", "tamrixjavascript", "function main() {\n    print('ready');\n    snooze(600);\n}\n"},
        {"tcl", "tamrixtcl", "proc main {} {\n    puts ready\n    after 600000\n}\n"},
        {"pl", "tamrixperl", "sub main {\n    print \"ready\\n\";\n    sleep 600;\n}\n1;\n"},
        {"rb", "tamrixruby", "def main\n  puts 'ready'\n  sleep 600\nend\n"},
    };
    const auto isBuilt = [](const auto& language) {
        return QFile::exists(QStringLiteral(TAMRIX_TEST_PREFIX "/lib/%1.so").arg(language.plugin));
    };
    for (const auto& language : languages) {
        Tamrix::Test::SuiteFolder mixed;
        // All others go first.
        for (const auto& other : languages) {
            if (isBuilt(other) && other.suffix != language.suffix)
                mixed.write(QStringLiteral("suite/a_%1/test.%1").arg(other.suffix), "\n");
        }
        if (!isBuilt(language))
            continue;
        mixed.write(QStringLiteral("suite/b/test.%1").arg(language.suffix), language.sleeping);
        RunnerProcess run;
        run.start({"run", mixed.path("suite"), "--result-dir", mixed.path("results")});
        EXPECT_TRUE(run.waitForOutput("ready")) << qPrintable(run.output() + run.errors());
        run.sendSignal(SIGINT);
        run.finish();
        EXPECT_EQ(run.exitCode(), 130) << language.suffix << qPrintable(run.output());
    }
}

TEST_F(InterruptedRun, ACaseWithItsOwnHandlerGetsTheSignalItselfAndTheNextDoesNot) {
    suite.write("suite/c/test.py",
                "import time\n"
                "def main():\n"
                "    print('second')\n"
                "    time.sleep(600)\n");
    suite.write("suite/d/test.py", "def main():\n    test.fail('must not run')\n");
    start(
        "import signal\n"
        "def main():\n"
        "    seen = []\n"
        "    signal.signal(signal.SIGINT, lambda *arguments: seen.append(1))\n"
        "    print('ready')\n"
        "    if waitFor(lambda: seen == [1], 60000):\n"
        "        test.log('own handler')\n");
    runner.sendSignal(SIGINT);
    ASSERT_TRUE(runner.waitForOutput("second")) << qPrintable(runner.output());
    runner.sendSignal(SIGINT);
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 130);
    const auto entries = Tamrix::Test::readJournal(suite.path("results/journal.jsonl"));
    EXPECT_EQ(Tamrix::Test::messagesOf(entries, "caseStart"), QString("a b c"));
    EXPECT_TRUE(Tamrix::Test::messagesOf(entries, "result").contains("own handler"));
}

}  // namespace
}  // namespace Tamrix
