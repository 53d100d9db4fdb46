// When a debugger prints with the line protocol as its front end, and in which encoding. The lines
// themselves are those of protocolcommands_test.cpp.

#include <gtest/gtest.h>

#include <functional>

#include "interpreter/debugger/lineprotocol/lineprotocol.h"
#include "interpreter/debugger/testdebugger.h"

namespace Tamrix {
namespace {

using Test::TestDebugger;

/// Nobody commands, and the script goes on at once.
class Nobody : public CommandInput {
public:
    Line readLine(const std::string&) override { return {End::Interrupted, {}}; }
};

class LineProtocolTest : public testing::TestWithParam<bool> {
protected:
    LineProtocolTest() { tamrix_verbose_debugger = GetParam(); }
    ~LineProtocolTest() override {
        tamrix_verbose_debugger = true;
        tamrix_hl_debugger = false;
    }

    /// The lines that are printed, each with "P" in place of the dialect's prefix.
    static std::string printedBy(const std::function<void(Debugger&)>& action,
                                 const QString& file = "/nowhere/a b.py") {
        TestDebugger debugger;
        if (!file.isNull())
            debugger.enterScript(file);
        debugger.setFrontEnd(std::make_unique<LineProtocol>(
            GetParam() ? ProtocolDialect::Terminal : ProtocolDialect::Machine,
            ProtocolSurroundings{std::make_unique<Nobody>(), {}, {}}));
        return printedBy(debugger, action);
    }

    static std::string printedBy(Debugger& debugger, const std::function<void(Debugger&)>& action) {
        testing::internal::CaptureStdout();
        action(debugger);
        std::string output = testing::internal::GetCapturedStdout();
        const std::string prefix = GetParam() ? "" : "TDBG:";
        if (!output.empty() && output.compare(0, prefix.size(), prefix) == 0)
            return "P" + output.substr(prefix.size());
        return output;
    }
};

INSTANTIATE_TEST_SUITE_P(Dialects, LineProtocolTest, testing::Bool(), [](const auto& dialect) {
    return dialect.param ? "Terminal" : "FrontEnd";
});

TEST_P(LineProtocolTest, SaysNothingOutsideOfSourcesAndFrames) {
    const auto stopAll = [](Debugger& debugger) {
        EXPECT_TRUE(debugger.stop());
        EXPECT_FALSE(debugger.stopWithObjectName("n", "d"));
        EXPECT_FALSE(debugger.stopWithSearchImage("i", 2, "f"));
        EXPECT_FALSE(debugger.stopWithSearchText("f"));
    };
    TestDebugger debugger;
    EXPECT_EQ(printedBy(debugger, stopAll), "") << "no frame, no source";
    debugger.pushFrame({});
    EXPECT_EQ(printedBy(debugger, stopAll), "") << "no source";
    debugger.popFrame();
    debugger.setCode(1, "/nowhere/a.py");
    debugger.setCurrentSourceId(1);
    EXPECT_EQ(printedBy(debugger, stopAll), "") << "no frame";
}

TEST_P(LineProtocolTest, HighlightsWithoutHalting) {
    const auto highlight = [](Debugger& debugger) { debugger.stopAndRun(); };
    TestDebugger debugger;
    debugger.setDebuggerMode(Debugger::Step);
    debugger.setCode(1, "/nowhere/a.py");
    debugger.setCurrentLine(5);
    debugger.setCurrentSourceId(1);
    EXPECT_EQ(printedBy(debugger, highlight), "") << "off until the host asks for it";
    EXPECT_EQ(debugger.debuggerMode(), Debugger::Step);

    tamrix_hl_debugger = true;
    EXPECT_EQ(printedBy(debugger, highlight), "P#line 5, column -1, /nowhere/a.py:\n")
        << "no frame is needed";
    EXPECT_EQ(debugger.debuggerMode(), Debugger::Run);

    debugger.setDebuggerMode(Debugger::Step);
    debugger.setCurrentSourceId(-1);
    EXPECT_EQ(printedBy(debugger, highlight), "");
    EXPECT_EQ(debugger.debuggerMode(), Debugger::Step);
}

TEST_P(LineProtocolTest, DialectIsThatOfTheConstruction) {
    TestDebugger debugger;
    tamrix_verbose_debugger = !GetParam();
    EXPECT_EQ(debugger.progressNotification(), !GetParam());
    EXPECT_EQ(printedBy(debugger, [](Debugger& other) { other.notify("a", "b"); }),
              "P@notify a\tb\n");
}

TEST_P(LineProtocolTest, PathsAreInTheEncodingOfTheDialect) {
    // The C locale of a test has no umlauts.
    EXPECT_EQ(printedBy([](Debugger& debugger) { debugger.stop(); },
                        QString::fromUtf8("/nowhere/\u00fc.py")),
              GetParam() ? "P@line 3, column 4, /nowhere/??.py:\n"
                         : "P@line 3, column 4, /nowhere/\u00fc.py:\n");
}

}  // namespace
}  // namespace Tamrix
