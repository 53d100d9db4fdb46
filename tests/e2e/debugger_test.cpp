// Scripts in the debugger, driven by programs and at the terminal.

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>
#include <csignal>

#include "e2e/documentblock.h"
#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "e2e/terminalsession.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

const QString exampleSuite =
    QDir(TAMRIX_TEST_SOURCE_DIR).canonicalPath() + "/examples/suite_debugging";

const QString prompt = "tamrixrunner dbg> ";

QString shown(const QString& text) {
    return Normaliser().path(exampleSuite, "SUITE").pattern("\\d+\\.\\d+ s\\b", "0.05 s")(text);
}

QByteArray typed(QString command) {
    return command.replace("SUITE", exampleSuite).toUtf8() + '\n';
}

/// What a program says to a command, or to none, until the script stands still again or has ended.
QString answer(RunnerProcess& runner, const QByteArray& command) {
    // Has an answer that no other command has.
    const QString last = "TDBG:imageNotFoundFixTarget error: at least one argument is required\n";
    runner.type(command + "imageNotFoundFixTarget\n");
    runner.waitForOutput(last);
    return runner.takeOutput().remove(last);
}

TEST(DebuggerDialogues, ThatOfTheDocumentGoesAsRecorded) {
    const DocumentBlock block("debugger.md", "run --debugger SUITE average");
    RunnerProcess runner;
    runner.startDialogue({"run", "--debugger", exampleSuite, "average"});
    QString recorded = answer(runner, "");
    for (const QString& command : block.lines().filter(QRegularExpression("^> ")))
        recorded += command + '\n' + answer(runner, typed(command.mid(2)));
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    EXPECT_TRUE(block.compare(shown(recorded + runner.takeOutput())));
}

TEST(DebuggerDialogues, TheSessionOfTheDocumentGoesAsRecorded) {
    const DocumentBlock block("debugger.md", "debug SUITE average");
    RunnerProcess runner;
    runner.startDialogue({"debug", exampleSuite, "average"});
    QString recorded;
    for (QString command : block.lines().filter(QRegularExpression("^" + prompt))) {
        command.remove(prompt);
        EXPECT_TRUE(runner.waitForOutput(prompt)) << qPrintable(runner.errors());
        recorded += runner.takeOutput() + command + '\n';
        runner.type(typed(command));
    }
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    EXPECT_TRUE(block.compare(shown(recorded + runner.takeOutput())));
}

class DebuggedRun : public testing::Test {
protected:
    void start(const QByteArray& script, const QByteArray& config = {}) {
        suite.write("suite/a/test.py", script);
        if (!config.isEmpty())
            suite.write("suite/config.xml", config);
        runner.startDialogue(
            {"run", "--debugger", suite.path("suite"), "--result-dir", suite.path("results")});
    }
    /// Lets the program perform the command and expects what it says then.
    void expect(const QByteArray& command, const QString& wanted) {
        const QString said = answer(runner, command.isEmpty() ? command : command + '\n')
                                 .remove(QRegularExpression(", column -?\\d+"))
                                 .replace(suite.path("suite"), "SUITE");
        EXPECT_EQ(said, wanted) << command.constData();
    }
    /// The messages of the results, each with the line of the script.
    QString results() const {
        return messagesOf(readJournal(suite.path("results/journal.jsonl")), "result");
    }

    SuiteFolder suite;
    RunnerProcess runner;
};

TEST_F(DebuggedRun, StopsWhereAScriptAsksForIt) {
    start(
        "def main():\n"
        "    test.breakpoint()\n"
        "    test.fail('not stopped for')\n"
        "    testSettings.breakOnFailure = True\n"
        "    test.compare(1, 2)\n");
    expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
    expect("run", "TDBG:@line 2, SUITE/a/test.py:\n");
    expect("run", "TDBG:@line 5, SUITE/a/test.py:\n");
    expect("eval test.fail('asked')", "TDBG:eval\n");
    expect("run", "");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 1);
}

TEST_F(DebuggedRun, TheEndOfTheInputEndsItWithWholeReports) {
    suite.write("suite/b/test.py", "def main():\n    test.fail('must not run')\n");
    start("def main():\n    pass\n");
    expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
    runner.closeInput();
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0);
    EXPECT_TRUE(runner.errors().startsWith("Suite suite\n")) << "the console report is there";
    EXPECT_TRUE(runner.errors().endsWith("tamrixrunner: 1 test case(s) did not run\n"))
        << qPrintable(runner.errors());
    const auto entries = readJournal(suite.path("results/journal.jsonl"));
    EXPECT_EQ(messagesOf(entries, "result"), "The run was ended in the debugger");
    EXPECT_EQ(entries.back()["kind"], "suiteEnd");
}

TEST_F(DebuggedRun, EachCaseIsDebuggedAnew) {
    suite.write("suite/b/test.py", "def main():\n    pass\n");
    start("def main():\n    pass\n");
    expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
    expect("run", "TDBG:@line 1, SUITE/b/test.py:\n");
    expect("run", "");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0);
}

TEST_F(DebuggedRun, AnInterruptStopsItAndTheNextOneEndsIt) {
    start(
        "import time\n"
        "def main():\n"
        "    print('ready')\n"
        "    while True:\n"
        "        time.sleep(0.01)\n"
        "def cleanup():\n"
        "    test.log('cleaned up')\n");
    expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
    runner.type("run\n");
    ASSERT_TRUE(runner.waitForErrors("ready"));
    runner.sendSignal(SIGINT);
    ASSERT_TRUE(runner.waitForOutput("TDBG:@line ")) << qPrintable(runner.errors());
    // The script stands still.
    runner.sendSignal(SIGINT);
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 130) << qPrintable(runner.errors());
    EXPECT_EQ(results(), "Script Error cleaned up") << qPrintable(runner.errors());
}

TEST(DebuggerTerminal, LinesAreEditedAndComeBack) {
    TerminalSession session(TAMRIX_TEST_PREFIX "/bin/tamrixrunner",
                            {"debug", exampleSuite, "average"});
    const QByteArray asked = prompt.toLatin1();
    ASSERT_TRUE(session.waitFor(asked)) << session.screen().constData();
    session.type("prunt\x7f\x7f\x7fint line\r");
    ASSERT_TRUE(session.waitFor("@line 1\r\n")) << session.screen().constData();
    ASSERT_TRUE(session.waitFor(asked));
    session.type("\x1b[A\r");
    ASSERT_TRUE(session.waitFor("@line 1\r\n")) << session.screen().constData();
    ASSERT_TRUE(session.waitFor(asked));
    // Ctrl-C where nothing runs ends the run as without debugger.
    session.type("\x03");
    EXPECT_EQ(session.finish(), 130) << session.screen().constData();
    EXPECT_TRUE(session.screen().contains("KeyboardInterrupt")) << session.screen().constData();
}

TEST(DebuggerTerminal, TheScriptHasTheTerminalWhileItRuns) {
    SuiteFolder suite;
    suite.write("suite/a/test.py",
                "def main():\n"
                "    name = input('name? ')\n"
                "    test.log('it is ' + name)\n");
    TerminalSession session(TAMRIX_TEST_PREFIX "/bin/tamrixrunner",
                            {"debug", suite.path("suite"), "a", "--verbose"});
    ASSERT_TRUE(session.waitFor(prompt.toLatin1())) << session.screen().constData();
    session.type("run\r");
    ASSERT_TRUE(session.waitFor("name? ")) << session.screen().constData();
    session.type("Ada\r");
    EXPECT_EQ(session.finish(), 0) << session.screen().constData();
    EXPECT_TRUE(session.screen().contains("it is Ada")) << session.screen().constData();
}

}  // namespace
}  // namespace Tamrix
