// What a debugger tells its front end, and does at its command.

#include <gtest/gtest.h>

#include "interpreter/debugger/testdebugger.h"
#include "support/printqt.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

class DebuggerCommands : public testing::Test {
protected:
    DebuggerCommands() {
        debugger.enterScript("/nowhere/a.py");
        debugger.setInteractive(true);
    }
    ~DebuggerCommands() override { tamrix_hl_debugger = false; }

    TestDebugger debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(debugger);
};

TEST_F(DebuggerCommands, EachWayOnHasItsModeAndDepth) {
    const struct {
        Resume command;
        int frames;
        Debugger::DbgMode mode;
        int stepDepth;
    } rows[] = {
        {Resume::Next, 2, Debugger::Next, 2},   {Resume::Next, 1, Debugger::Next, 1},
        {Resume::Return, 2, Debugger::Next, 1}, {Resume::Return, 1, Debugger::Next, 0},
        {Resume::Step, 2, Debugger::Step, 7},   {Resume::Run, 2, Debugger::Run, 7},
    };
    for (const auto& row : rows) {
        while (debugger.frameDepth() > row.frames)
            debugger.popFrame();
        while (debugger.frameDepth() < row.frames)
            debugger.pushFrame({1, 0, 1});
        debugger.next(7);
        frontEnd.commands = {Resume{row.command}};
        debugger.stop();
        EXPECT_EQ(frontEnd.take(), "3");
        EXPECT_EQ(debugger.debuggerMode(), row.mode) << int(row.command);
        EXPECT_EQ(debugger.stepDepth(), row.stepDepth) << int(row.command);
    }
    debugger.shutDown();
}

TEST_F(DebuggerCommands, TheScriptStandsUntilACommandLetsItGoOn) {
    frontEnd.commands = {SetBreakPoint{"a.py", 5},    SetBreakPoint{"/nowhere/b.py", 6},
                         DeleteBreakPoint{"a.py", 6}, DeleteBreakPoint{"/nowhere/b.py", 6},
                         DeleteBreakPoint{"a.py", 5}, SetBreakPoint{"/nowhere/a.py", 7},
                         Resume{Resume::Step},        SetBreakPoint{"a.py", 8}};
    debugger.stop();
    EXPECT_EQ(frontEnd.take(),
              "3; /nowhere/a.py:5; /nowhere/b.py:6 buffered; "
              "No break point set at /nowhere/a.py:6; unknown source file /nowhere/b.py; "
              "/nowhere/a.py:5; /nowhere/a.py:7");
    EXPECT_FALSE(debugger.hasBreakPoint(5, 1));
    EXPECT_TRUE(debugger.hasBreakPoint(7, 1));
    EXPECT_EQ(frontEnd.commands.size(), 1u) << "left to the next stop";
    debugger.setCode(2, "/nowhere/b.py");
    EXPECT_TRUE(debugger.hasBreakPoint(6, 2));
}

TEST_F(DebuggerCommands, EveryStopTellsItsReasonAndWaits) {
    const struct {
        void (*stop)(Debugger&);
        const char* told;
    } rows[] = {
        {[](Debugger& stopped) { stopped.stop(); }, "3"},
        {[](Debugger& stopped) { stopped.stopWithObjectName("", "d"); }, "3"},
        {[](Debugger& stopped) { stopped.stopWithObjectName("n", "d"); }, "3 no object n: d"},
        {[](Debugger& stopped) { stopped.stopWithSearchImage("i", 2, "/s"); },
         "3 no image i 2 in /s"},
        {[](Debugger& stopped) { stopped.stopWithSearchText("/s"); }, "3 no text in /s"},
        {[](Debugger& stopped) { stopped.missingStep(12, "I am"); }, "12 no step I am"},
    };
    for (const bool isInteractive : {true, false}) {
        debugger.setInteractive(isInteractive);
        for (const auto& row : rows) {
            debugger.setSkipCurrentError(1);
            frontEnd.commands = {Resume{Resume::Step}};
            row.stop(debugger);
            EXPECT_EQ(frontEnd.take(), row.told);
            // A missing step waits in any case.
            const bool hasWaited = isInteractive || QString(row.told).contains("no step");
            EXPECT_EQ(frontEnd.commands.empty(), hasWaited) << row.told << isInteractive;
            // No stop finds an old wish. A missing step is none that has an error.
            const bool isStop = !QString(row.told).contains("no step");
            EXPECT_EQ(debugger.skipCurrentError(), isStop ? 0 : 1) << row.told;
        }
    }
}

TEST_F(DebuggerCommands, AFailedSearchKnowsWhetherSomebodyCouldMendIt) {
    const std::function<bool()> stops[] = {
        [this] { return debugger.stopWithObjectName("n", "d"); },
        [this] { return debugger.stopWithSearchImage("i", 2, "/s"); },
        [this] { return debugger.stopWithSearchText("/s"); }};
    for (const auto& stop : stops) {
        frontEnd.commands = {Resume::Step};
        EXPECT_TRUE(stop());
        EXPECT_FALSE(stop()) << "the commands have ended";
        debugger.setInteractive(false);
        frontEnd.commands = {Resume::Step};
        EXPECT_FALSE(stop());
        debugger.setInteractive(true);
    }
    frontEnd.commands = {Resume::Step};
    debugger.popFrame();
    debugger.popFrame();
    EXPECT_FALSE(stops[0]()) << "outside of any frame";
    EXPECT_TRUE(debugger.stop()) << "whatever becomes of it";
}

TEST_F(DebuggerCommands, AHighlightedLineGoesOnWhateverIsCommanded) {
    tamrix_hl_debugger = true;
    frontEnd.commands = {Resume{Resume::Step}};
    debugger.stopAndRun();
    EXPECT_EQ(frontEnd.take(), "passed 3");
    EXPECT_TRUE(frontEnd.commands.empty());
    EXPECT_EQ(debugger.debuggerMode(), Debugger::Run);
    debugger.shutDown();
}

}  // namespace
}  // namespace Tamrix
