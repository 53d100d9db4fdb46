#include "interpreter/bdd/bdtdebugger.h"

#include <gtest/gtest.h>

#include <QDir>

#include "interpreter/bdd/fakeactions.h"
#include "interpreter/debugger/testdebugger.h"
#include "platform/gherkin/featurerun.h"
#include "support/printqt.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

class FeatureDebugging : public testing::Test {
protected:
    FeatureDebugging() { debugger.setInteractive(true); }

    /// The lines of the steps at which the debugger stops.
    QString stops(Debugger::DbgMode mode) {
        debugger.setDebuggerMode(mode);
        for (const Gherkin::SourceExtent& extent : steps) {
            feature.trace(extent, Gherkin::Entering);
            EXPECT_EQ(debugger.frameDepth(), 3);
            EXPECT_EQ(debugger.currentFrame(), (DebuggerFrame{extent.firstLine, 5, 2}));
            feature.trace(extent, static_cast<Gherkin::TraceType>(2));
            feature.trace(extent, Gherkin::Leaving);
            EXPECT_EQ(debugger.currentFrame(), (DebuggerFrame{3, 4, 1}));
        }
        return frontEnd.take(" ");
    }

    const std::vector<Gherkin::SourceExtent> steps = {{3, 5, 3}, {4, 5, 7}, {8, 5, 8}};
    TestDebugger debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(debugger);
    BDTDebugger feature{&debugger, 2};
};

TEST_F(FeatureDebugging, StopsByMode) {
    debugger.enterScript("/suite/test.py");
    debugger.setCode(2, "/suite/test.feature");
    EXPECT_EQ(stops(Debugger::None), "");
    EXPECT_EQ(stops(Debugger::Run), "");
    EXPECT_EQ(stops(Debugger::Step), "3 4 8");
    debugger.next(0);
    EXPECT_EQ(stops(Debugger::Next), "3 4 8") << "at any depth";
}

TEST_F(FeatureDebugging, StopsAtBreakPointsInAnyLineOfAStep) {
    debugger.enterScript("/suite/test.py");
    debugger.setCode(2, "/suite/test.feature");
    debugger.setBreakPoint(7, 2, true);
    EXPECT_TRUE(feature.hasBreakPoint({4, 5, 7}));
    EXPECT_FALSE(feature.hasBreakPoint({8, 5, 8}));
    EXPECT_EQ(stops(Debugger::Run), "4");
    debugger.setBreakPoint(8, 1, true);
    EXPECT_EQ(stops(Debugger::Run), "4") << "the other one is in another file";
}

}  // namespace
}  // namespace Tamrix
