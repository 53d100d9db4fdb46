#include <QCoreApplication>
#include <QRegularExpression>
#include <functional>

#include "interpreter/bridge/debugger.h"
#include "plugins/tcl/tcltest.h"
#include "support/inmemorymodel.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

const char* const program = R"tcl(proc inner {a} {
    set b [expr {$a + 1}]
    return $b
}
proc main {} {
    set total 0
    foreach x {1 2} {
        incr total [inner $x]
    }
    set array(key) value
    set list [list a [dict create k v] c]
    if {$total > 3} {
        set late 1
    }
    return $total
}
set global {a text}
main
)tcl";

class TclDebugging : public TclTest {
protected:
    TclDebugging()
        : debugger(*interpreter->debugger()), frontEnd(ScriptedFrontEnd::install(debugger)) {
        interpreter->setScriptArguments(script(), {});
    }

    /// Runs the program, stepping from its beginning; what the front end was told.
    QString told(const std::deque<DebuggerCommand>& commands, const QString& text = program) {
        frontEnd.commands = commands;
        debugger.setDebuggerMode(Debugger::Step);
        debugger.setInteractive(true);
        error = run(text);
        debugger.setInteractive(false);
        return frontEnd.take(" ");
    }
    Look evaluate(const QString& code) {
        return [this, code](Debugger& each) { frontEnd.told += each.evaluate(code); };
    }
    Look variables(const QString& path) {
        return [this, path](Debugger& each) {
            for (const Debugger::VariableBinding& binding : each.variables(path))
                frontEnd.told += binding.name + ":" + binding.type + "=" + binding.value;
        };
    }
    Look stack() {
        return [this](Debugger& each) {
            QStringList lines;
            for (const LineInfo& position : each.callStack())
                lines += QString::number(position.lineNumber());
            frontEnd.told += "<" + lines.join(' ') + ">";
        };
    }

    int argumentCount = 0;
    QCoreApplication application{argumentCount, nullptr};
    Debugger& debugger;
    ScriptedFrontEnd& frontEnd;
    QString error;
};

TEST_F(TclDebugging, StepsInOverAndOut) {
    std::deque<DebuggerCommand> steps(20, Resume::Step);
    EXPECT_EQ(told(steps), "1 5 17 18 6 7 8 2 3 8 2 3 10 11 12 13 15");
    EXPECT_EQ(told({Resume::Next, Resume::Next, Resume::Next, Resume::Next}), "1 5 17 18");
    EXPECT_EQ(told({SetBreakPoint{script(), 3}, Resume::Run, stack(), Resume::Return, stack(),
                    DeleteBreakPoint{script(), 3}, Resume::Run}),
              "1 " + Debugger::sanitizedFilePath(script()) + ":3 3 <3 8 18> 8 <8 18> " +
                  Debugger::sanitizedFilePath(script()) + ":3");
    EXPECT_EQ(error, "");
}

const char* const rounds = R"tcl(proc work {values} {
    foreach x $values {
        set a $x; set b $x
        set c $x
    }
}
work {1 2}
source [file join [file dirname [info script]] later.tcl]
work 3
again
)tcl";

/// What runs between them is passed through without a look at its frames.
TEST_F(TclDebugging, RunsFromBreakPointToBreakPoint) {
    ASSERT_TRUE(writeFile(folder.filePath("later.tcl"), "proc again {} {\n    work 4\n}\n"));
    QString stops = told({SetBreakPoint{"test.tcl", 3}, SetBreakPoint{"later.tcl", 2}, Resume::Run,
                          stack(), Resume::Run, stack(), Resume::Run, stack(), Resume::Run, stack(),
                          Resume::Run, stack(), Resume::Next},
                         rounds);
    // Once for each round, though two commands stand on the line.
    EXPECT_EQ(stops.remove(QRegularExpression("\\S*\\.tcl:\\d+ ")),
              "1 buffered 3 <3 7> 3 <3 7> 3 <3 9> 2 <2 10> 3 <3 2 10> 4");
    EXPECT_EQ(error, "");
}

TEST_F(TclDebugging, ShowsVariables) {
    EXPECT_EQ(told({SetBreakPoint{"test.tcl", 12}, Resume::Run, variables(""), variables("+list"),
                    variables("+list.1"), variables("+array"), variables("^1"), Resume::Run})
                  .section(' ', 2),
              "12 +array:dict=key value +list:list=a {k v} c total:int=5 x:int=2 "
              "global:string=a text list.0:string=a +list.1:dict=k v list.2:string=c "
              "list.1.[k]:string=v array.[key]:string=value ^1.global:string=a text");
}

TEST_F(TclDebugging, EvaluatesInAFrame) {
    EXPECT_EQ(
        told({SetBreakPoint{"test.tcl", 3}, Resume::Run, evaluate("$b * 10"), evaluate("b"),
              evaluate("set b 40"), evaluate("^1 total"), evaluate("$nothing"), evaluate("inner 1"),
              evaluate("^7 x"), DeleteBreakPoint{"test.tcl", 3}, Resume::Run})
            .section(' ', 2)
            .remove(Debugger::sanitizedFilePath(script())),
        "3 20 2 40 0 Error: can't read \"nothing\": no such variable 2 "
        "There is no frame 7 levels outwards :3");
    EXPECT_EQ(error, "");
}

/// As the arrival of an event does.
bool callHandler(ScriptContext*) {
    Interpreter::self()->invokeFunction("handler");
    return true;
}

TEST_F(TclDebugging, StopsForErrorsThatNothingCatches) {
    define("callHandler", callHandler);
    define("endCase", [](ScriptContext* context) {
        context->setError("x", ScriptContext::FatalError);
        return false;
    });
    const struct {
        const char* what;
        const char* script;
        const char* told;
    } rows[] = {
        {"caught", "catch {error x}\ntry {error x} on error {} {}\n", ""},
        {"caught further out", "proc f {} {error x}\ncatch {f}\n", ""},
        {"an error", "proc f {} {\n    error x\n}\nf\n", "ScriptError=Error: x 2 <2 4>"},
        {"not meant by the handler", "try {error x} finally {}\n", "ScriptError=Error: x 1 <1>"},
        {"in a handler of an event", "proc handler {} {\n    error x\n}\ncatch {callHandler}\n",
         "ScriptError=Error: x 2 <2 4>"},
        {"caught in a handler", "proc handler {} {\n    catch {error x}\n}\ncallHandler\n", ""},
        {"wanted", "test exception {error x}\n", ""},
        {"the end of the case", "proc f {} {\n    endCase\n}\nf\n",
         "ScriptError=FatalError: x 2 <2 4>"},
    };
    for (const auto& row : rows) {
        frontEnd.commands = {stack(), Resume::Run};
        debugger.setDebuggerMode(Debugger::Run);
        debugger.setInteractive(true);
        run(row.script);
        debugger.setInteractive(false);
        EXPECT_EQ(frontEnd.take(" "), row.told) << row.what;
    }
}

}  // namespace
}  // namespace Tamrix
