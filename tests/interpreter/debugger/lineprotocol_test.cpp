// What a debugger prints with the line protocol as its front end.

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

TEST_P(LineProtocolTest, PrintsThePosition) {
    EXPECT_EQ(printedBy([](Debugger& debugger) { EXPECT_TRUE(debugger.stop()); }),
              "P@line 3, column 4, /nowhere/a b.py:\n");
    EXPECT_EQ(printedBy([](Debugger& debugger) { debugger.stopWithObjectName("", "detail"); }),
              "P@line 3, column 4, /nowhere/a b.py:\n");
}

TEST_P(LineProtocolTest, PrintsFailedLookUps) {
    EXPECT_EQ(printedBy([](Debugger& debugger) {
                  EXPECT_FALSE(debugger.stopWithObjectName("{a='1,#2\\\n'}", ""));
              }),
              "P@objLookupError 3\t4\t/nowhere/a b.py\t{a\\='1\\,\\#2\\\\\\n'}\n");
    EXPECT_EQ(printedBy([](Debugger& debugger) {
                  debugger.stopWithObjectName(
                      "n", QString::fromUtf8("tab\t \"q\" \\ \n \x7f \r \u00e4 \u20ac ~,=#"));
              }),
              "P@objLookupError 3\t4\t/nowhere/a b.py\tn\t"
              "tab\\t \\\"q\\\" \\\\ \\n \\x7f \\x0d \\xe4 \\u20ac ~,=#\n");
    EXPECT_EQ(printedBy([](Debugger& debugger) {
                  EXPECT_FALSE(debugger.stopWithSearchImage("a=b", 3, "/tmp/x,y.png"));
              }),
              "P@imgLookupError 3\t4\t/nowhere/a b.py\ta\\=b\t3\t/tmp/x\\,y.png\n");
    EXPECT_EQ(printedBy([](Debugger& debugger) {
                  EXPECT_FALSE(debugger.stopWithSearchText("/tmp/#.png"));
              }),
              "P@textLookupError 3\t4\t/nowhere/a b.py\t/tmp/\\#.png\n");
}

TEST_P(LineProtocolTest, PrintsMissingStepsAndNotifications) {
    // Neither needs a position.
    EXPECT_EQ(
        printedBy([](Debugger& debugger) { debugger.missingStep(12, "I am, #1 \\"); }, QString()),
        "P@missingStep 12 I am, #1 \\\n");
    EXPECT_EQ(printedBy([](Debugger& debugger) { debugger.notify("a=b", "c,d\ne"); }, QString()),
              "P@notify a\\=b\tc\\,d\\ne\n");
}

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
