#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "plugins/tcl/tcltest.h"

namespace Tamrix {
namespace {

using namespace Test;

class TclErrors : public TclTest {};

TEST_F(TclErrors, StackOfScriptLines) {
    ASSERT_EQ(run("proc inner {} {\n"
                  "    error bad\n"
                  "}\n"
                  "proc main {} {\n"
                  "    if {1} {\n"
                  "        inner\n"
                  "    }\n"
                  "}\n"
                  "proc compiled {x} {\n"
                  "    set y 1\n"
                  "    set z [expr {$y / $x}]\n"
                  "}\n"
                  "proc native {} {\n"
                  "    foreach x {1 2} {\n"
                  "        findFile\n"
                  "    }\n"
                  "}\n"
                  "proc again {} {\n"
                  "    if {[catch {inner} message options]} {\n"
                  "        catch {error other}\n"
                  "        return -options $options $message\n"
                  "    }\n"
                  "}\n"
                  "proc text {} {\n"
                  "    eval \"set a 1\\nnosuch 1\"\n"
                  "}\n"
                  "namespace eval shop {\n"
                  "    proc sell {} {\n"
                  "        apply {{} {\n"
                  "            error sold\n"
                  "        }}\n"
                  "    }\n"
                  "}\n"
                  "proc space {} { shop::sell }\n"
                  "proc library {} {\n"
                  "    clock format noTime\n"
                  "}\n"
                  "proc endless {} { endless }\n"),
              "");
    const struct {
        const char* function;
        const char* message;
        std::vector<int> lines;
    } rows[] = {
        {"main", "Error: bad", {2, 6}},
        {"native", "TamrixError: findFiles() requires two string arguments", {15}},
        {"again", "Error: bad", {2, 19}},
        {"text", "Error: invalid command name \"nosuch\"", {25}},
        {"space", "Error: sold", {30, 29, 34}},
        {"library", "Error: expected integer but got \"noTime\"", {36}},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(call(row.function));
        EXPECT_EQ(interpreter->errorMessage(), row.message);
        EXPECT_EQ(lines(), row.lines) << row.function;
    }
    EXPECT_EQ(run("\n\ncompiled 0"), "Error: divide by zero");
    EXPECT_EQ(lines(), (std::vector{11, 3}));
    EXPECT_EQ(interpreter->errorFile({}),
              QFileInfo(folder.path()).canonicalFilePath() + "/test.tcl");
    EXPECT_FALSE(call("endless"));
    EXPECT_EQ(interpreter->errorMessage(), "Error: too many nested evaluations (infinite loop?)");
    EXPECT_EQ(lines().size(), 100u);
    EXPECT_EQ(run("set x 1"), "");
    EXPECT_EQ(interpreter->errorLine(), -1);
    EXPECT_FALSE(call("nothing"));
}

TEST_F(TclErrors, WhatTclTellsNoPlaceOfStandsInTheFunctionThatWasCalled) {
    ASSERT_EQ(
        run("proc informed {} {\n    error text {info of its own}\n}\n"
            "proc leaving {} {\n    break\n}\n"
            "proc coded {} {\n    return -code 5 x\n}\n"
            "proc traced {} {\n    trace add variable ::v write {apply {args {error no}}}\n"
            "    set ::v 1\n}\n"
            "proc child {} {\n    set child [interp create]\n    $child eval {error inner}\n}\n"
            "proc leave {} {\n    exit 3\n}\n"),
        "");
    const struct {
        const char* function;
        int line;
    } rows[] = {{"informed", 1}, {"leaving", 4}, {"coded", 7},
                {"traced", 12},  {"child", 16},  {"leave", 18}};
    for (const auto& row : rows) {
        EXPECT_FALSE(call(row.function));
        EXPECT_EQ(lines(), std::vector{row.line}) << row.function;
    }
}

TEST_F(TclErrors, Syntax) {
    const struct {
        const char* text;
        int line;
        const char* message;
    } rows[] = {
        {"set x 1\nproc f {} {\n", 2, "missing close-brace"},
        {"# a comment {\n\nset x \"a\n\n", 3, "missing \""},
        {"set x 1\n\nset x [f\n", 3, "missing close-bracket"},
        {"set x {a}b\n", 1, "extra characters after close-brace"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(interpreter->checkSyntax(row.text, script()));
        EXPECT_EQ(interpreter->errorLine(), row.line) << row.text;
        EXPECT_EQ(interpreter->errorMessage(), row.message);
    }
    EXPECT_TRUE(interpreter->checkSyntax("proc f {} {\n# a }\n}\n", script()));

    // A file that is sourced is named with its line, below the command.
    ASSERT_TRUE(writeFile(folder.filePath("broken.tcl"), "\n\nset x [nosuch]\n"));
    EXPECT_EQ(run("\nsource " + folder.filePath("broken.tcl")),
              "Error: invalid command name \"nosuch\"");
    EXPECT_EQ(lines(), (std::vector{3, 2}));
}

TEST_F(TclErrors, CodeWithoutAFileHasALine) {
    EXPECT_FALSE(interpreter->evaluate("set x 1\nset y $nothing\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_EQ(interpreter->errorFile("none"), "none");
}

TEST_F(TclErrors, KindsHaveErrorCodes) {
    runner.lookupError = "it is not there";
    EXPECT_EQ(run(R"tcl(
foreach {code script} {
    {TAMRIX LOOKUP}   {waitForObject {type Button}}
    {TAMRIX ERROR}    {findFile}
    {TAMRIX ARGUMENT} {Image configure}
    {TAMRIX MEMBER}   {Image nothing}
} {
    try {
        eval $script
        error "no error: $script"
    } trap $code message {
        puts $message
    }
}
testSettings configure -throwOnFailure true
try {
    test verify 0
} trap {TAMRIX VERIFICATION} message {
    puts ok
}
testSettings configure -throwOnFailure false
)tcl"),
              "");
}

TEST_F(TclErrors, ExitEndsTheCase) {
    ASSERT_EQ(run("proc init {} { catchNothing }\n"
                  "proc catchNothing {} { try { exit } on error {} {} }\n"
                  "proc main {} { test fail {not reached} }\n"
                  "proc cleanup {} { test log cleaned }\n"
                  "proc failing {} { exit 3 }\n"),
              "");
    EXPECT_FALSE(call("failing"));
    EXPECT_EQ(interpreter->errorMessage(), "Exit: 3");
    EXPECT_TRUE(call("init"));
    EXPECT_TRUE(call("main"));
    EXPECT_TRUE(call("cleanup"));
    EXPECT_EQ(results(), QStringList("7 cleaned: "));
}

TEST_F(TclErrors, OfEventHandlersAreThoseOfTheCase) {
    interpreter->setScriptArguments(script(), {});
    ASSERT_EQ(run("proc late {} {\n"
                  "    error broken\n"
                  "}\n"
                  "proc main {} {\n"
                  "    after 0 late\n"
                  "    after 0 {expr {1 / 0}}\n"
                  "    after 20 {set ::done 1}\n"
                  "    vwait ::done\n"
                  "    error {the script's own}\n"
                  "}\n"),
              "");
    EXPECT_FALSE(call("main"));
    EXPECT_EQ(interpreter->errorMessage(), "Error: the script's own");
    EXPECT_EQ(lines(), std::vector({9}));
    EXPECT_EQ(results(), QStringList({"9 Script Error: Error: broken",
                                      "9 Script Error: Error: divide by zero"}));
    EXPECT_EQ(report.results()[0].callStack.front().lineNumber(), 2);
    EXPECT_EQ(report.results()[1].callStack.front().lineNumber(), 8);

    // Also where the script ends in front of them.
    report.entries.clear();
    ASSERT_EQ(run("proc main {} { after 0 late; after 0 {set ::end 1}; vwait ::end }\n"), "");
    EXPECT_TRUE(call("main"));
    EXPECT_EQ(results(), QStringList("9 Script Error: Error: broken"));

    // A script may have a handler of its own.
    report.entries.clear();
    ASSERT_EQ(run("proc bgerror {text} { test log mine $text }\n"
                  "proc main {} { after 0 late; update }\n"),
              "");
    EXPECT_TRUE(call("main"));
    EXPECT_EQ(results(), QStringList("7 mine: broken"));
}

TEST_F(TclErrors, EventHandlersMayEndTheScript) {
    const struct {
        const char* end;
        bool succeeds;
        const char* error;
        bool isSkip;
    } rows[] = {
        {"exit", true, "", false},
        {"exit 3", false, "Exit: 3", false},
        {"test skip offline", false, "FatalError: offline: ", true},
    };
    for (const auto& row : rows) {
        interpreter->setScriptArguments(script(), {});
        report.entries.clear();
        ASSERT_EQ(run("proc main {} {\n"
                      "    after 0 {" +
                      QString(row.end) +
                      "}\n"
                      "    catch {vwait ::never}\n"
                      "    test log {not reached}\n"
                      "}\n"
                      "proc cleanup {} { test log cleaned }\n"),
                  "");
        EXPECT_EQ(call("main"), row.succeeds) << row.end;
        EXPECT_EQ(interpreter->errorMessage(), row.error) << row.end;
        EXPECT_EQ(interpreter->errorIsSkip(), row.isSkip) << row.end;
        EXPECT_TRUE(call("cleanup"));
        EXPECT_EQ(results().filter("7 "), QStringList("7 cleaned: ")) << row.end;
    }
}

TEST_F(TclErrors, TheNextScriptStartsAfresh) {
    ASSERT_TRUE(interpreter->evaluate("set shared 1\n", QString()));  // an init script
    interpreter->setScriptArguments(script(), {"a b", "c"});
    ASSERT_EQ(run("if {$argv0 eq {} || [lindex $argv 0] ne {a b} || $argc != 2} {error $argv}\n"
                  "proc main {} { exit }\n"
                  "proc puts {args} { error mine }\n"
                  "after 0 {error late}\n"
                  "proc cleanup {} { test fail {of another script} }\n"),
              "");
    EXPECT_TRUE(call("main"));
    interpreter->setScriptArguments(script(), {});
    EXPECT_FALSE(interpreter->hasFunction("main"));
    EXPECT_FALSE(interpreter->hasFunction("cleanup"));
    ASSERT_EQ(
        run("proc main {} { test log [file tail [info script]] $::shared; puts x; update }\n"), "");
    EXPECT_TRUE(call("main"));
    EXPECT_EQ(results(), QStringList("7 test.tcl: 1"));
}

TEST_F(TclErrors, OnlyTheSkipItselfEndsACaseAsSkipped) {
    const struct {
        const char* body;
        bool ends;
        bool isSkip;
    } rows[] = {
        {"test skip s", true, true},
        {"try {test skip s} on error {} {}", true, true},
        {"try {test skip s} finally {puts x}", true, true},
        {"test exception {test skip s}", true, true},
        {"waitFor {[test skip s]}", true, true},
        {"try {test skip s} finally {error {database is broken}}", true, false},
        {"catch {test skip s}", false, false},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(run("proc main {} {\n    " + QString(row.body) + "\n}\n"), "");
        EXPECT_EQ(call("main"), !row.ends) << row.body;
        EXPECT_EQ(interpreter->errorIsSkip(), row.isSkip) << row.body;
        EXPECT_EQ(lines(), row.ends ? std::vector{2} : std::vector<int>()) << row.body;
    }
    EXPECT_FALSE(interpreter->evaluate("test skip {while it loads}\n", script()));
    EXPECT_TRUE(interpreter->errorIsSkip());
}

TEST_F(TclErrors, OutputStandsInOrder) {
    EXPECT_EQ(run("puts -nonewline {one }\n"
                  "puts two\n"
                  "puts -nonewline cut\n"
                  "test log between\n"
                  "puts stderr {to err}\n"
                  "puts -nonewline \"l\\u00e4st \\U0001F600\"\n"),
              "");
    QStringList seen;
    for (const ReportEntry& entry : report.entries) {
        if (const auto* output = eventOf<OutputWritten>(entry))
            seen.append((output->stream == OutputStream::StandardError ? "stderr:" : "stdout:") +
                        output->text);
        if (const auto* logged = eventOf<ResultAdded>(entry))
            seen.append(":" + logged->message);
    }
    EXPECT_EQ(seen.join('|'), "stdout:one two\n|stdout:cut|:between|stderr:to err\n|stdout:" +
                                  QString::fromUtf8("l\xc3\xa4st ") + seen.last().section(' ', 1));
    // Nothing is open any more, and nothing breaks.
    EXPECT_EQ(run("close stdout\nclose stderr\nclose stdin\ntest log on"), "");
    EXPECT_EQ(run("puts x"), "Error: can not find channel named \"stdout\"");
}

TEST_F(TclErrors, PositionsThroughNativeCode) {
    define("callBack", [](ScriptContext* context) {
        QString error;
        context->argument(0)->call({}, &error);
        return true;
    });
    EXPECT_EQ(run("proc inner {} {\n"
                  "    test fail inner\n"
                  "    test fixateResultContext 2\n"
                  "    test log fixated\n"
                  "    test restoreResultContext\n"
                  "}\n"
                  "proc outer {} {\n"
                  "    callBack {apply {{} {\n"
                  "        inner\n"
                  "    }}}\n"
                  "}\n"
                  "outer\n"
                  "eval {\n"
                  "    test log {in eval}\n"
                  "}\n"
                  "proc traced {} {\n"
                  "    trace add variable watched write {test log traced; list}\n"
                  "    set watched 1\n"
                  "}\n"
                  "traced\n"),
              "");
    const std::vector<ResultAdded> entries = report.results();
    const auto linesOf = [&](std::size_t index) {
        QStringList found;
        for (const LineInfo& position : entries.at(index).callStack)
            found.append(QString::number(position.lineNumber()));
        return found.join(' ');
    };
    EXPECT_EQ(linesOf(0), "2 9 8 12");
    EXPECT_EQ(linesOf(1), "8");
    EXPECT_EQ(linesOf(2), "14");
    EXPECT_EQ(linesOf(3).section(' ', -1), "20");
}

TEST_F(TclErrors, ModulesOfTheSuite) {
    ASSERT_TRUE(writeFile(folder.filePath("pkgIndex.tcl"),
                          "package ifneeded shop 1.0 [list source [file join $dir shop.tcl]]\n"));
    ASSERT_TRUE(writeFile(folder.filePath("shop.tcl"),
                          "package provide shop 1.0\nproc sell {} {\n    test log sold\n}\n"));
    ASSERT_TRUE(writeFile(folder.filePath("prices-1.0.tm"), "proc price {} {return 5}\n"));
    EXPECT_EQ(interpreter->addToSearchPath(QFileInfo(folder.path())), "");
    EXPECT_EQ(run("package require shop\npackage require prices\nsell\ntest compare [price] 5"),
              "");
    EXPECT_EQ(report.results().front().callStack.front().lineNumber(), 3);
}

TEST_F(TclErrors, InterruptsEndEveryLoop) {
    interpreter->setScriptArguments(script(), {});
    ASSERT_EQ(run("proc main {} {\n    while {1} {\n        catch {error x}\n    }\n}\n"
                  "proc sleeping {} { catch {after 20000}; while {1} {} }\n"
                  "proc cleanup {} { test log cleaned }\n"),
              "");
    for (const char* function : {"main", "sleeping"}) {
        std::thread user([] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            std::raise(SIGINT);
        });
        EXPECT_FALSE(call(function));
        user.join();
        EXPECT_EQ(interpreter->errorMessage(), "The script was interrupted");
    }
    EXPECT_TRUE(call("cleanup"));
    EXPECT_EQ(results(), QStringList("7 cleaned: "));
}

TEST_F(TclErrors, WhatIsTooLargeEndsTheCase) {
    // In a process of its own: Tcl can't be used any more behind it.
    EXPECT_EXIT(
        {
            run("proc huge {} {\n"
                "    set x [string repeat x 1000000000]\n"
                "    append x $x\n"
                "    append x $x\n"
                "}\n");
            const bool ended = !call("huge") &&
                               interpreter->errorMessage().contains("2147483647") &&
                               lines() == std::vector<int>{1};
            interpreter->setScriptArguments(script(), {});
            const ScriptLanguagePlugin plugin("tamrixtcl");
            const bool refuses = !call("huge") && !plugin.interpreter(&runner);
            std::_Exit(ended && refuses ? 7 : 1);
        },
        testing::ExitedWithCode(7), "in an earlier test case of this run");
}

}  // namespace
}  // namespace Tamrix
