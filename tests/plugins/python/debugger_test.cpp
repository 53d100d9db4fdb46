#include "interpreter/bridge/debugger.h"

#include "plugins/python/pythontest.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Python's debugger is driven through Debugger alone, and seen through a front end.
class PythonDebugging : public PythonTest {
protected:
    PythonDebugging() : debugger(interpreter->debugger()) {
        EXPECT_TRUE(writeFile(script(), text));
        EXPECT_EQ(run(text), "");
    }

    /// Calls main() and gives the lines at which it stopped.
    QString stops() {
        EXPECT_TRUE(interpreter->callFunction("main", ObjectList()));
        return frontEnd.take(" ");
    }

    const char* const text =
        "def helper(n):\n"           // 1
        "    m = n + 1\n"            // 2
        "    return m\n"             // 3
        "def main():\n"              // 4
        "    a = helper(1)\n"        // 5
        "    try:\n"                 // 6
        "        fail()\n"           // 7
        "    except ValueError:\n"   // 8
        "        b = helper(2)\n"    // 9
        "    return b\n"             // 10
        "def fail():\n"              // 11
        "    raise ValueError()\n";  // 12
    Debugger* debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(*debugger);
};

TEST_F(PythonDebugging, StopsByMode) {
    ASSERT_NE(debugger, nullptr);
    debugger->setDebuggerMode(Debugger::Step);
    EXPECT_EQ(stops(), "") << "not interactive";
    debugger->setInteractive(true);
    EXPECT_EQ(stops(), "5 2 3 6 7 12 8 9 2 3 10");
    debugger->next(1);
    EXPECT_EQ(stops(), "5 6 7 8 9 10");
    debugger->next(0);
    EXPECT_EQ(stops(), "");
    debugger->setDebuggerMode(Debugger::Run);
    EXPECT_EQ(stops(), "");
    debugger->setDebuggerMode(Debugger::None);
    EXPECT_EQ(stops(), "");
    EXPECT_EQ(debugger->frameDepth(), 0);
    debugger->setInteractive(false);
    debugger->step();
    EXPECT_EQ(stops(), "");
}

TEST_F(PythonDebugging, StopsAtBreakPoints) {
    debugger->bufferBreakPoint(script(), 3);
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    EXPECT_EQ(stops(), "3 3");
    const int id = debugger->findSourceId("test.py");
    ASSERT_GT(id, 0);
    debugger->setBreakPoint(3, id, false);
    debugger->setBreakPoint(10, id, true);
    EXPECT_EQ(stops(), "10");
    debugger->setDebuggerMode(Debugger::None);
    EXPECT_EQ(stops(), "");
    debugger->next(1);
    debugger->setBreakPoint(2, id, true);
    EXPECT_EQ(stops(), "5 2 6 7 8 9 2 10");
}

TEST_F(PythonDebugging, GoesOnAsItsFrontEndCommands) {
    debugger->setInteractive(true);
    debugger->step();
    frontEnd.commands = {Resume{Resume::Step}, Resume{Resume::Return},     Resume{Resume::Next},
                         Resume{Resume::Next}, SetBreakPoint{script(), 3}, Resume{Resume::Run},
                         Resume{Resume::Next}, Resume{Resume::Run}};
    EXPECT_EQ(stops(), QString("5 2 6 7 8 %1:3 3 10").arg(script()));
    EXPECT_TRUE(frontEnd.commands.empty());
}

/// Of a function that runs already and had none.
TEST_F(PythonDebugging, StopsAtBreakPointsThatAreSetInBetween) {
    debugger->bufferBreakPoint(script(), 2);
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    frontEnd.commands = {SetBreakPoint{script(), 8}, DeleteBreakPoint{script(), 2},
                         Resume{Resume::Run}, SetBreakPoint{script(), 10}, Resume{Resume::Run}};
    EXPECT_EQ(stops(), QString("2 %1:8 %1:2 8 %1:10 10").arg(script()));
}

TEST_F(PythonDebugging, StacksAreTheSameWithAndWithoutTracing) {
    define("look", [](ScriptContext*) {
        Debugger* const own = Debugger::self();
        QStringList words;
        for (const LineInfo& position : own->callStack())
            words.append(QString::number(position.lineNumber()));
        words.append("|");
        for (const ScriptLocation& location : own->stackTrace(1, 1))
            words.append(QString::number(location.line));
        words.append(QFileInfo(Debugger::currentFile()).fileName());
        s_seen.append(words.join(' '));
        return true;
    });
    const QString calling =
        "def inner():\n"
        "    look()\n"
        "def main():\n"
        "    inner()\n";
    ASSERT_EQ(run(calling), "");
    EXPECT_EQ(stops(), "");
    debugger->setInteractive(true);
    EXPECT_EQ(stops(), "");
    EXPECT_EQ(s_seen, (QStringList{"2 4 | 4 test.py", "2 4 | 4 test.py"}));

    // Python's library between the script's lines, and around the call itself.
    s_seen.clear();
    ASSERT_EQ(run("import functools, json\n"
                  "def inner(*_):\n"
                  "    look()\n"
                  "    return 0\n"
                  "def main():\n"
                  "    json.loads('{}', object_hook=inner)\n"
                  "    json.loads('{}', object_hook=lambda *_: functools.reduce(inner, [1, 2]))\n"
                  "    json.loads('{}', object_hook=look)\n"),
              "");
    EXPECT_EQ(stops(), "");
    const QStringList traced = s_seen;
    debugger->setInteractive(false);
    s_seen.clear();
    EXPECT_EQ(stops(), "");
    EXPECT_EQ(s_seen, traced);
    EXPECT_EQ(traced.mid(0, 2), (QStringList{"3 6 | 6 test.py", "3 7 7 | 7 test.py"}));
    EXPECT_TRUE(traced.value(2).startsWith("8 |")) << qPrintable(traced.value(2));
}

}  // namespace
}  // namespace Tamrix
