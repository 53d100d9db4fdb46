// Where the debugger of a language stops, and the frames that it shows there.

#include <gtest/gtest.h>

#include "interpreter/language/framesdebugger.h"
#include "interpreter/language/timelimit.h"
#include "support/printqt.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

class LanguageFrames : public testing::Test {
protected:
    LanguageFrames() : frontEnd(ScriptedFrontEnd::install(debugger)) {
        debugger.setInteractive(true);
        debugger.setDebuggerMode(Debugger::Run);
    }

    int feature() { return debugger.sourceIdOf("orders.feature"); }

    FramesDebugger debugger;
    ScriptedFrontEnd& frontEnd;
};

TEST_F(LanguageFrames, StepsOfFeaturesStandBetweenThoseOfScripts) {
    debugger.enter("test", 1);
    // A scenario and its step have no code between them.
    debugger.pushFrameAndSetCurrent(10, 1, feature());
    debugger.pushFrameAndSetCurrent(12, 1, feature());
    debugger.enter("steps", 20);
    debugger.enter("steps", 21);
    // The step runs another feature.
    debugger.pushFrameAndSetCurrent(3, 1, debugger.sourceIdOf("other.feature"));
    debugger.enter("steps", 30);
    EXPECT_EQ(debugger.places(), QStringList({"steps:30", "other.feature:3", "steps:21", "steps:20",
                                              "orders.feature:12", "orders.feature:10", "test:1"}));

    debugger.leave();
    debugger.popFrameAndSetCurrent();
    EXPECT_EQ(debugger.places(), QStringList({"steps:21", "steps:20", "orders.feature:12",
                                              "orders.feature:10", "test:1"}));
}

TEST_F(LanguageFrames, AFeatureWithoutAScriptIsTheOutermost) {
    debugger.pushFrameAndSetCurrent(2, 1, feature());
    debugger.enter("steps", 5);
    EXPECT_EQ(debugger.places(), QStringList({"steps:5", "orders.feature:2"}));
}

TEST_F(LanguageFrames, AnInterruptIsForWhatRuns) {
    debugger.interrupt();
    EXPECT_EQ(debugger.soonStops, 1);
    TimeLimit code([] {});
    debugger.exchangeEvaluation(&code);
    debugger.interrupt();
    EXPECT_EQ(debugger.exchangeEvaluation(nullptr), &code);
    EXPECT_TRUE(code.wasExpired());
    EXPECT_EQ(debugger.soonStops, 1);
}

TEST_F(LanguageFrames, StopAtBreakPointsAndForSteps) {
    debugger.enter("test", 1);
    debugger.addBreakPoint("test", 3);
    debugger.reach(1);
    EXPECT_EQ(frontEnd.take(), "");
    // At the break point, from where it steps into a function.
    frontEnd.commands = {Resume::Step};
    debugger.reach(3);
    EXPECT_EQ(frontEnd.take(), "3");
    debugger.enter("module", 7);
    frontEnd.commands = {Resume::Return};
    debugger.reach(7);
    EXPECT_EQ(frontEnd.take(), "7");
    // Out of it: neither the rest of the function nor what it calls.
    debugger.reach(8);
    debugger.enter("module", 20);
    debugger.reach(20);
    debugger.leave();
    EXPECT_EQ(frontEnd.take(), "");
    debugger.leave();
    frontEnd.commands = {Resume::Next};
    debugger.reach(4);
    EXPECT_EQ(frontEnd.take(), "4");
    // Over a function.
    debugger.enter("module", 7);
    debugger.reach(7);
    debugger.leave();
    frontEnd.commands = {Resume::Run};
    debugger.reach(5);
    EXPECT_EQ(frontEnd.take(), "5");
    debugger.reach(6);
    EXPECT_EQ(frontEnd.take(), "");
    EXPECT_EQ(debugger.silences, 0);
}

TEST_F(LanguageFrames, OfAnErrorAreShownWhereItWasRaised) {
    debugger.enter("test", 1);
    debugger.pushFrameAndSetCurrent(2, 1, feature());
    debugger.enter("steps", 5);
    const std::vector<ScriptFrame> raised = {
        {1, "module", 9, 4, -1}, {2, "steps", 5, -1, -1}, {3, "test", 1, -1, -1}};
    QStringList seen;
    frontEnd.commands = {Look([&](Debugger&) { seen = debugger.places(); }), Resume::Run};
    debugger.stopForError("ValueError: no", raised);
    EXPECT_EQ(frontEnd.take(), "ScriptError=ValueError: no; 9");
    EXPECT_EQ(seen, QStringList({"module:9", "steps:5", "orders.feature:2", "test:1"}));
    EXPECT_EQ(debugger.places(), QStringList({"steps:5", "orders.feature:2", "test:1"}));
    // What has come to no line stops nowhere.
    debugger.stopForError("SyntaxError", {});
    EXPECT_EQ(frontEnd.take(), "");
}

}  // namespace
}  // namespace Tamrix
