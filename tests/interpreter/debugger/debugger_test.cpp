#include "interpreter/bridge/debugger.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "interpreter/debugger/testdebugger.h"
#include "support/fakelanguage.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using Test::FakeContext;
using Test::ScriptedFrontEnd;
using Test::TestDebugger;
using Test::WorkingDirectory;
using Test::writeFile;
using Locations = std::vector<Debugger::Location>;
using Stack = std::vector<LineInfo>;

class DebuggerTest : public testing::Test {
protected:
    DebuggerTest() : root(QDir(folder.path()).canonicalPath()), workingDirectory(root) {
        EXPECT_TRUE(writeFile(a) && writeFile(b));
    }

    QTemporaryDir folder;
    QString root;
    QString a = root + "/a.py";
    QString b = root + "/sub/b.py";
    WorkingDirectory workingDirectory;
    TestDebugger debugger;
};

TEST_F(DebuggerTest, IsReachableWhileItLives) {
    EXPECT_EQ(Debugger::self(), &debugger);
    {
        TestDebugger second;
        EXPECT_EQ(Debugger::self(), &second);
    }
    EXPECT_EQ(Debugger::self(), nullptr);
    EXPECT_TRUE(Debugger::currentFile().isNull());
    Debugger::setSelf(&debugger);
    EXPECT_EQ(Debugger::self(), &debugger);
}

TEST_F(DebuggerTest, FindsSourcesByPathOrBareName) {
    debugger.setCode(2, "sub/b.py");
    debugger.setCode(7, "a.py");
    debugger.setCode(5, "a.py");
    debugger.setCode(5, "sub/b.py");
    EXPECT_EQ(debugger.findSourceId(5), a) << "an id keeps its first path";
    EXPECT_EQ(debugger.findSourceId("a.py"), 5) << "the first in the order of ids";
    EXPECT_EQ(debugger.findSourceId(root + "/sub/../a.py"), 5);
    EXPECT_EQ(debugger.findSourceId("none.py"), -1);
    EXPECT_TRUE(debugger.findSourceId(9).isNull());

    const WorkingDirectory elsewhere("/");
    EXPECT_EQ(debugger.findSourceId("b.py"), 2);
    EXPECT_EQ(debugger.findSourceId("sub/b.py"), -1);
}

TEST_F(DebuggerTest, ResolvesLinksInPaths) {
    ASSERT_TRUE(QFile::link(root + "/sub", root + "/link"));
    debugger.setCode(1, "link/b.py");
    EXPECT_EQ(debugger.findSourceId(1), b);
}

TEST_F(DebuggerTest, BreakPointsReachEverySourceOfTheirFile) {
    debugger.setBreakPoint(1, 4, true);
    debugger.setBreakPoint(1, 4, true);
    debugger.setBreakPoint(2, 4, true);
    debugger.setBreakPoint(1, 4, false);
    EXPECT_FALSE(debugger.hasBreakPoint(1, 4));
    EXPECT_TRUE(debugger.hasBreakPoint(2, 4));
    EXPECT_FALSE(debugger.hasBreakPoint(2, 5));

    debugger.bufferBreakPoint("a.py", 3);
    debugger.bufferBreakPoint("sub/../a.py", 8);
    EXPECT_FALSE(debugger.hasBreakPoint(3, 5));
    debugger.setCode(5, a);
    debugger.setCode(6, "a.py");
    for (const int sourceId : {5, 6}) {
        EXPECT_TRUE(debugger.hasBreakPoint(3, sourceId));
        EXPECT_TRUE(debugger.hasBreakPoint(8, sourceId));
    }
    // Those that are set while the file is known reach it when it is loaded once more, too.
    debugger.addBreakPoint("a.py", 4);
    debugger.setCode(7, a);
    EXPECT_TRUE(debugger.hasBreakPoint(4, 7));
    EXPECT_TRUE(debugger.deleteBreakPoint("a.py", 4));
    EXPECT_FALSE(debugger.hasBreakPoint(4, 7));
}

TEST_F(DebuggerTest, GivesEachSourceAnIdOfItsOwn) {
    const int first = debugger.nextSourceId();
    EXPECT_GE(first, 1);
    EXPECT_EQ(TestDebugger().nextSourceId(), first + 1) << "also across debuggers";
}

TEST_F(DebuggerTest, CallsAndReturnsMoveThePosition) {
    EXPECT_EQ(debugger.currentFrame(), (DebuggerFrame{-1, -1, -1}));
    debugger.pushFrameAndSetCurrent(1, 2, 3);
    debugger.pushFrameAndSetCurrent(4, 5, 6);
    EXPECT_EQ(debugger.frameDepth(), 2);
    EXPECT_EQ(debugger.currentFrame(), (DebuggerFrame{4, 5, 6}));
    debugger.popFrameAndSetCurrent();
    EXPECT_EQ(debugger.currentFrame(), (DebuggerFrame{1, 2, 3}));
    debugger.popFrameAndSetCurrent();
    debugger.popFrameAndSetCurrent();
    EXPECT_EQ(debugger.currentFrame(), DebuggerFrame()) << "one pop too many does no harm";
    EXPECT_EQ(debugger.frameDepth(), 0);
}

/// Four positions: line 40 of a.py, called from b.py:30, from an unknown source, from a.py:10,
/// which was started from b.py:1.
class DebuggerStacks : public DebuggerTest {
protected:
    DebuggerStacks() {
        debugger.setCode(1, a);
        debugger.setCode(2, b);
        debugger.pushFrame({1, 0, 2});
        debugger.pushFrame({10, 0, 1});
        debugger.pushFrame({20, 0, 99});
        debugger.pushFrame({30, 0, 2});
        debugger.setCurrentLine(40);
        debugger.setCurrentSourceId(1);
    }
};

TEST_F(DebuggerStacks, CallStackLeavesOutTheBottomAndTheUnknown) {
    EXPECT_EQ(debugger.callStack(), (Stack{{a, 40}, {b, 30}, {a, 10}}));
    EXPECT_EQ(Debugger::currentFile(), a);

    // The position of the script context stands in for an unknown one, as far as there is one.
    debugger.setCurrentLine(-1);
    EXPECT_EQ(debugger.callStack(), Stack());
    FakeContext context;
    ScriptContext::setCurrent(&context);
    EXPECT_EQ(debugger.callStack(), (Stack{context.frames.front(), {b, 30}, {a, 10}}));
    context.frames.clear();
    EXPECT_EQ(debugger.callStack(), Stack());
    ScriptContext::setCurrent(nullptr);
}

TEST_F(DebuggerStacks, CallStackOfOneFrame) {
    for (int pops = 0; pops < 3; ++pops)
        debugger.popFrame();
    EXPECT_EQ(debugger.callStack(), (Stack{{a, 40}}));
    debugger.popFrame();
    EXPECT_EQ(debugger.callStack(), Stack());
    EXPECT_EQ(debugger.stackTrace(0, 0), Locations());
}

TEST_F(DebuggerStacks, StackTraceGoesDownToTheBottom) {
    const Locations all = {{a, 40}, {b, 30}, {QString(), 20}, {a, 10}, {b, 1}};
    const auto part = [&](int from, int count) {
        return Locations(all.begin() + from, all.begin() + from + count);
    };
    struct {
        int skip;
        int maxDepth;
        Locations expected;
    } const cases[] = {
        {0, 0, all},         {0, 1, part(0, 1)},  {0, 3, part(0, 3)}, {0, 9, all},
        {1, 0, part(1, 4)},  {1, 2, part(1, 2)},  {2, 0, part(2, 3)}, {4, 0, part(4, 1)},
        {5, 0, Locations()}, {9, 1, Locations()}, {-3, -1, all},
    };
    for (const auto& [skip, maxDepth, expected] : cases)
        EXPECT_EQ(debugger.stackTrace(skip, maxDepth), expected) << skip << ' ' << maxDepth;
}

TEST_F(DebuggerTest, FramesAreBroughtUpToDateBeforeTheyAreRead) {
    // As a language does whose trace hook is not installed.
    class LazyDebugger : public TestDebugger {
    public:
        QString file;

    protected:
        void updateFrames() override {
            setCode(1, file);
            clearFrames();
            setCurrentSourceId(1);
            setCurrentLine(5);
            pushFrame({});
        }
    };
    LazyDebugger lazy;
    lazy.file = a;
    EXPECT_EQ(Debugger::currentFile(), a);
    EXPECT_EQ(lazy.callStack(), (Stack{{a, 5}}));
    EXPECT_EQ(lazy.stackTrace(0, 1), (Locations{{a, 5}}));
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(lazy);
    lazy.stop();
    EXPECT_EQ(frontEnd.take(), "5");
}

}  // namespace
}  // namespace Tamrix
