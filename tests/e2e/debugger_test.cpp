// Scripts in the debugger, driven by programs and at the terminal.

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QRegularExpression>
#include <QThread>
#include <QUrl>
#include <csignal>

#include "e2e/applicationrun.h"
#include "e2e/documentblock.h"
#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "e2e/terminalsession.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"
#include "support/waituntil.h"

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

class DebuggedRun : public ApplicationRun {
protected:
    /// `starter` is a program that becomes the runner.
    void start(const QByteArray& script, const QString& starter = {}) {
        suite.write("suite/a/test.py", script);
        QStringList arguments = {"run", "--debugger", suite.path("suite"), "--result-dir",
                                 suite.path("results")};
        if (!starter.isEmpty()) {
            arguments.prepend(TAMRIX_TEST_PREFIX "/bin/tamrixrunner");
            runner.setProgram(starter);
        }
        runner.startDialogue(arguments);
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
    expect("eval test.fail('asked')", "TDBG:evalFalse\n");
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

/// A suite with a map of names in which the calculator's display has a wrong one.
class DebuggedApplication : public DebuggedRun {
protected:
    DebuggedApplication() {
        suite.write("suite/config.xml",
                    "<suite><applications><application name='calculator' "
                    "path='/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/calculator/"
                    "calculator'/></applications></suite>");
        writeMap("QTextEdit");
    }

    void writeMap(const QByteArray& type) {
        suite.write("suite/shared/objectnames.tsv", ":Display\t{type='" + type + "'}\n");
    }
    /// Starts the script and lets it run into its first look-up.
    void startAndRun(const QByteArray& look) {
        start(
            "def main():\n"
            "    testSettings.objectNotFoundDebugging = True\n"
            "    testSettings.waitForObjectTimeout = 100\n"
            "    startApplication('calculator')\n"
            "    " +
            look +
            "\n"
            "    test.pass_('went on')\n");
        expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
        expect("enableObjectNotFoundDebugging", "");
        expectStop("run");
    }
    void expectStop(const QByteArray& command) {
        const QString said = answer(runner, command + '\n');
        static const QRegularExpression event(
            "^TDBG:@objLookupError 5\t-?\\d+\t.*/a/test.py\t:Display\t"
            "Object ':Display' not found within 100 ms.*\n$");
        EXPECT_TRUE(event.match(said).hasMatch()) << qPrintable(said + runner.errors());
    }
};

TEST_F(DebuggedApplication, ANameThatFindsNothingIsMendedInTheMap) {
    // Each in its own way: a wait, a function of the application with the act in one request.
    for (const char* look : {"waitForObject(':Display')", "click(':Display')"}) {
        writeMap("QTextEdit");
        startAndRun(look);
        // Nothing has changed.
        expectStop("continue");
        expectStop("next");
        writeMap("QLineEdit");
        expect("continue", "");
        runner.finish();
        EXPECT_EQ(runner.exitCode(), 0) << look << qPrintable(runner.errors());
        EXPECT_EQ(results(), "went on");
    }
}

TEST_F(DebuggedApplication, CodeMendsWhatTheNameIsToFind) {
    startAndRun("waitForObject(':Display')");
    const QString code = "open('" + suite.path("suite/shared/objectnames.tsv") +
                         "', 'w').write(\":Display\\t{type='QLineEdit'}\\n\")";
    expect("continue updateReferences " + QUrl::toPercentEncoding(code), "");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
}

TEST_F(DebuggedApplication, AnErrorTakesItsCourseWhereThatIsWanted) {
    startAndRun("waitForObject(':Display')");
    answer(runner, "continue skipCurrentError\n");
    // The debugger may stop for the error, too.
    answer(runner, "run\n");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(results().startsWith("Script Error")) << qPrintable(runner.errors());
}

TEST_F(DebuggedApplication, AFaultyMapIsTold) {
    startAndRun("waitForObject(':Display')");
    suite.write("suite/shared/objectnames.tsv", "nonsense\n");
    const QString said = answer(runner, "continue\n");
    EXPECT_TRUE(said.startsWith("TDBG:@notify ObjectMap\t" + suite.path("suite")))
        << qPrintable(said);
    EXPECT_TRUE(said.contains("\nTDBG:@objLookupError 5\t")) << qPrintable(said);
    runner.type("continue skipCurrentError\nrun\n");
    runner.finish();
}

TEST_F(DebuggedApplication, AnImageThatIsNotFoundIsMendedWhileTheScriptStands) {
    suite.write(
        "suite/a/searchImages/seven.png",
        readFile(TAMRIX_TEST_SOURCE_DIR "/examples/suite_pictures/shared/searchImages/twelve.png"));
    start(
        "def main():\n"
        "    testSettings.imageNotFoundDebugging = True\n"
        "    startApplication('calculator')\n"
        "    click(findImage('seven', {'threshold': 100}, '{type=\\'Calculator\\'}'))\n"
        "    test.compare(waitForObject('{type=\\'QLineEdit\\'}').text, '7')\n");
    expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
    expect("enableImageNotFoundDebugging", "");
    const QString stop = answer(runner, "run\n");
    EXPECT_TRUE(stop.startsWith("TDBG:@imgLookupError 4\t")) << qPrintable(stop + runner.errors());
    const QString screenshot = stop.trimmed().section('\t', -1);
    EXPECT_FALSE(QImage(screenshot).isNull()) << qPrintable(stop);
    const QString state = answer(runner, "getInterpreterStateFor ImageLookup\n");
    EXPECT_TRUE(state.contains(R"("imageSearchOptions":{"threshold":100.0})")) << qPrintable(state);

    // The button as it is on the screenshot becomes the image.
    const QString button =
        answer(runner, "eval " +
                           QUrl::toPercentEncoding(
                               "(lambda b: '%d %d %d %d' % (b.x, b.y, b.width, b.height))(object."
                               "globalBounds(waitForObject(\"{type='Button' text='7'}\")))") +
                           '\n');
    const QStringList place =
        QUrl::fromPercentEncoding(button.toUtf8()).section('\'', 1, 1).split(' ');
    RunnerProcess cutter;
    cutter.run(QStringList{"cut", screenshot} + place +
               QStringList{"seven", "--case", "a", "--replace", "--suite", suite.path("suite")});
    EXPECT_EQ(cutter.exitCode(), 0) << qPrintable(cutter.errors());
    expect("setInterpreterStateFor ImageLookup " +
               QUrl::toPercentEncoding(R"({"imageSearchOccurrence":0})"),
           "TDBG:setInterpreterStateFor error: imageSearchOccurrence must be a positive integer\n");
    expect("setInterpreterStateFor ImageLookup " +
               QUrl::toPercentEncoding(R"({"imageSearchOptions":{"tolerant":true}})"),
           "TDBG:setInterpreterStateFor ok:\n");
    // The call that the script needs is told.
    expect("continue",
           "TDBG:@notify imageSearchCall\tfindImage(\"seven\"\\, {\"tolerant\":True}\\, "
           "\"{type\\='Calculator'}\")\n");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    EXPECT_FALSE(QFile::exists(screenshot));
}

TEST_F(DebuggedApplication, ItsObjectsAreListedWithTheirProperties) {
    writeMap("QLineEdit");
    start(
        "def main():\n"
        "    startApplication('calculator')\n"
        "    display = waitForObject(':Display')\n"
        "    test.breakpoint()\n");
    expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
    expect("run", "TDBG:@line 4, SUITE/a/test.py:\n");
    const QString top = answer(runner, "print variables\n");
    EXPECT_TRUE(top.contains("#+display")) << qPrintable(top);
    const QString members = answer(runner, "print variables +display\n");
    EXPECT_TRUE(members.startsWith("TDBG:symb.+display:{")) << qPrintable(members);
    EXPECT_TRUE(members.contains("#display.text=0,")) << qPrintable(members);
    EXPECT_TRUE(members.contains("#display.readOnly=true,")) << qPrintable(members);
    expect("run", "");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
}

TEST_F(DebuggedRun, StopsForAnErrorThatNothingCatches) {
    start(
        "def fails():\n"
        "    value = 3\n"
        "    raise ValueError('wrong')\n"
        "def main():\n"
        "    try:\n"
        "        fails()\n"
        "    except ValueError:\n"
        "        pass\n"
        "    fails()\n");
    expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
    expect("run",
           "TDBG:@notify ScriptError\tValueError: wrong\n"
           "TDBG:@line 3, SUITE/a/test.py:\n");
    expect("bt", "TDBG:SUITE/a/test.py: 9\n");
    expect("eval value", "TDBG:eval3\n");
    expect("run", "");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 1);
}

TEST_F(DebuggedApplication, QuittingEndsTheApplicationsOfTheRun) {
    startAndRun("waitForObject(':Display')");
    runner.type("quit\n");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    EXPECT_EQ(results(), "The run was ended in the debugger") << qPrintable(runner.errors());
    // What is left is cleared up behind the process.
    EXPECT_TRUE(Tamrix::Test::waitUntil([&] { return leftProcesses().isEmpty(); }));
}

/// Interrupts a script that runs.
class InterruptedDebugging : public DebuggedRun {
protected:
    void startAndRun(const QString& starter) {
        start(
            "import time\n"
            "def main():\n"
            "    print('ready')\n"
            "    while True:\n"
            "        time.sleep(0.01)\n"
            "def cleanup():\n"
            "    test.log('cleaned up')\n",
            starter);
        expect("", "TDBG:@line 1, SUITE/a/test.py:\n");
        runner.type("run\n");
        EXPECT_TRUE(runner.waitForErrors("ready"));
    }
    void expectStop() {
        EXPECT_TRUE(runner.waitForOutput("TDBG:@line ")) << qPrintable(runner.errors());
        EXPECT_EQ(answer(runner, "bt\n").count("TDBG:@line "), 1) << "and no further one";
    }
    void expectOrderlyEnd() {
        runner.finish();
        EXPECT_EQ(runner.exitCode(), 130) << qPrintable(runner.errors());
        EXPECT_EQ(results(), "Script Error cleaned up") << qPrintable(runner.errors());
    }
};

TEST_F(InterruptedDebugging, StopsTheScriptAndTheNextOneEndsTheRun) {
    startAndRun({});
    runner.sendSignal(SIGINT);
    expectStop();
    // The script stands still.
    runner.sendSignal(SIGINT);
    expectOrderlyEnd();
}

TEST_F(InterruptedDebugging, StopsItOnceBySignalsToAllItsProcesses) {
    startAndRun("setsid");
    runner.sendSignalToGroup(SIGINT);
    expectStop();
    // Not taken for the other half of the first one.
    QThread::msleep(1100);
    runner.sendSignalToGroup(SIGINT);
    expectOrderlyEnd();
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

TEST(DebuggerTerminal, CtrlDEndsTheRun) {
    TerminalSession session(TAMRIX_TEST_PREFIX "/bin/tamrixrunner",
                            {"debug", exampleSuite, "average"});
    ASSERT_TRUE(session.waitFor(prompt.toLatin1())) << session.screen().constData();
    session.type("\x04");
    EXPECT_EQ(session.finish(), 0) << session.screen().constData();
    EXPECT_TRUE(
        session.screen().contains("\r\ntamrixrunner: the run was ended in the debugger\r\n"))
        << session.screen().constData();
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
