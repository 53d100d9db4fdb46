#include <gtest/gtest.h>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/testfunctions.h"
#include "interpreter/generic/verdictsupport.h"
#include "support/fakelanguage.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;
using List = ScriptArgument::List;

class Verdicts : public testing::Test {
protected:
    ~Verdicts() override {
        TestSettingsType::s_vpOptions = VerificationOptions();
        TestSettingsType::s_breakOnFailure = false;
        TestSettingsType::s_logStacktraceOnPass = false;
        TestSettingsType::s_logStacktraceOnLog = false;
        ScriptContext::setCurrent(nullptr);
    }

    void throwOnFailure() {
        TestSettingsType::s_vpOptions.setFlag(VerificationOptions::ThrowOnFailure, true);
    }

    /// The last result as "type|message|detail|comment", of a skip with what is skipped.
    QString lastResult() const {
        const auto results = report.results();
        if (results.empty())
            return "none";
        const ResultAdded& entry = results.back();
        return QStringLiteral("%1|%2|%3|%4")
            .arg(entry.type)
            .arg(entry.message, entry.detail, entry.comment + entry.skipped);
    }

    /// What the script gets: "error: ..." or the result.
    QString outcome() const {
        if (context.hasError())
            return QStringLiteral("error %1: %2")
                .arg(context.errorType())
                .arg(context.errorMessage());
        return context.result ? context.result->toString() : QString("nothing");
    }

    RecordingReport report;
    TestResult result{&report};
    FakeContext context{&result};
};

TEST_F(Verdicts, SimpleResults) {
    struct {
        ScriptContext::Function function;
        int type;
        const char* value;
    } const rows[] = {
        {testPass, 10, "true"},     {testXPass, 13, "false"}, {testFail, 11, "false"},
        {testXFail, 12, "false"},   {testFatal, 8, "false"},  {testLog, 7, "true"},
        {testWarning, 14, "false"},
    };
    for (const auto& row : rows) {
        context.call(row.function, {text("message"), text("detail")});
        EXPECT_EQ(lastResult(), QStringLiteral("%1|message|detail|").arg(row.type));
        EXPECT_EQ(outcome(), row.value) << row.type;
    }
    const std::size_t count = report.results().size();
    for (const List& arguments : {List{}, List{text("a"), text("b"), text("c")}}) {
        context.call(testPass, arguments);
        EXPECT_EQ(outcome(), "error 0: Expected one or two arguments");
    }
    for (const List& arguments : {List{integer(1)}, List{text("a"), integer(1)}}) {
        context.call(testPass, arguments);
        EXPECT_EQ(outcome(),
                  "error 0: The first and optional second argument must be of type string");
    }
    EXPECT_EQ(report.results().size(), count);
}

TEST_F(Verdicts, SkipEndsTheTestCase) {
    context.call(testSkip, {text("no display"), text("headless")});
    EXPECT_EQ(lastResult(), "6|no display|headless|testcase");
    EXPECT_EQ(outcome(), "error 2: no display: headless");
}

TEST_F(Verdicts, VerifyAndCompare) {
    struct {
        ScriptContext::Function function;
        List arguments;
        const char* result;
        const char* outcome;
    } const rows[] = {
        {testVerify, {boolean(true)}, "10|Verified|True expression|", "true"},
        {testVerify,
         {boolean(false), text("why")},
         "11|Not verified|False expression|why",
         "false"},
        {testXVerify, {boolean(true)}, "13|Verified|True expression|", "true"},
        {testXVerify, {boolean(false)}, "12|Not verified|False expression|", "false"},
        {testCompare, {text("a"), text("a")}, "10|Comparison|'a' and 'a' are equal|", "true"},
        {testCompare,
         {text("a"), text("b"), text("c")},
         "11|Comparison|'a' and 'b' are not equal|c",
         "false"},
        {testCompare,
         {integer(1), text("1")},
         "11|Comparison|'1' (int) and '1' (string) are not equal because types of values differ|",
         "false"},
        {testXCompare, {integer(1), integer(1)}, "13|Comparison|'1' and '1' are equal|", "true"},
        // Values that look like place holders stay as they are.
        {testXCompare,
         {text("%2"), text("%1")},
         "12|Comparison|'%2' and '%1' are not equal|",
         "false"},
    };
    for (const auto& row : rows) {
        context.call(row.function, row.arguments);
        EXPECT_EQ(lastResult(), row.result);
        EXPECT_EQ(outcome(), row.outcome) << row.result;
    }
    struct {
        ScriptContext::Function function;
        List arguments;
        const char* error;
    } const wrong[] = {
        {testVerify, {}, "verify() expects 1-2 arguments"},
        {testXVerify, {text(""), text(""), text("")}, "xverify() expects 1-2 arguments"},
        {testCompare, {text("")}, "compare() expects 2-3 arguments"},
        {testXCompare, {}, "xcompare() expects 2-3 arguments"},
        {testException, {}, "exception() expects at least 1-2 arguments"},
    };
    for (const auto& row : wrong) {
        context.call(row.function, row.arguments);
        EXPECT_EQ(outcome(), QString("error 0: ") + row.error);
    }
}

TEST_F(Verdicts, FailuresCanEndTheScript) {
    throwOnFailure();
    struct {
        ScriptContext::Function function;
        List arguments;
        const char* outcome;
    } const rows[] = {
        {testFail, {text("m"), text("d")}, "error 1: m: d"},
        {testFatal, {text("m")}, "error 1: m: "},
        {testXPass, {text("m")}, "false"},  // only fail and fatal are failures of their own
        {testWarning, {text("m")}, "false"},
        {testVerify, {boolean(false), text("why")}, "error 1: Not verified: why, False expression"},
        {testXVerify, {boolean(true)}, "error 1: Verified: True expression"},
        {testXVerify, {boolean(false)}, "false"},
        {testCompare, {text("a"), text("b")}, "error 1: Comparison: 'a' and 'b' are not equal"},
        {testXCompare, {text("a"), text("b")}, "false"},
    };
    for (const auto& row : rows) {
        context.call(row.function, row.arguments);
        EXPECT_EQ(outcome(), row.outcome);
    }
}

TEST_F(Verdicts, Exceptions) {
    context.exceptionOutcome = {"it was raised", ""};
    context.call(testException, {text("code"), text("comment")});
    EXPECT_EQ(lastResult(), "10|Exception|it was raised|comment");
    EXPECT_EQ(outcome(), "true");
    context.exceptionOutcome = {"", "nothing was raised"};
    context.call(testException, {text("code")});
    EXPECT_EQ(lastResult(), "11|Exception|nothing was raised|");
    EXPECT_EQ(outcome(), "false");
    throwOnFailure();
    context.call(testException, {text("code"), text("comment")});
    EXPECT_EQ(outcome(), "error 1: Exception: comment, nothing was raised");
}

struct StoppingDebugger : Debugger {
    StoppingDebugger() : Debugger(nullptr) {
        setCode(1, "/suite/tst/test.fake");
        pushFrameAndSetCurrent(20, 0, 1);
        pushFrameAndSetCurrent(7, 0, 1);
    }
    VariableBindings variables(const QString&) override { return {}; }
    bool stop() override {
        ++stops;
        return true;
    }
    int stops = 0;
};

TEST_F(Verdicts, StopInTheDebuggerOnFailure) {
    TestSettingsType::s_breakOnFailure = true;
    context.call(testFail, {text("without a debugger")});
    StoppingDebugger debugger;
    context.call(testFail, {text("not interactive")});
    EXPECT_EQ(debugger.stops, 0);
    debugger.setInteractive(true);
    context.call(testFail, {text("m")});
    context.call(testXVerify, {boolean(true)});
    EXPECT_EQ(debugger.stops, 2);
    context.call(testPass, {text("m")});
    context.call(testXFail, {text("m")});
    EXPECT_EQ(debugger.stops, 2);
    context.call(testBreakpoint);
    EXPECT_EQ(debugger.stops, 3);
    EXPECT_EQ(lastResult(),
              "7|script breakpoint|Hit a test.breakpoint()|Invoked the test.breakpoint function");
}

TEST_F(Verdicts, StacksByType) {
    StoppingDebugger debugger;
    const auto depthOf = [&](ScriptContext::Function function) {
        context.call(function, {text("m")});
        return report.results().back().callStack.size();
    };
    debugger.pushFrameAndSetCurrent(3, 0, 1);
    EXPECT_EQ(depthOf(testFail), 3u);
    EXPECT_EQ(depthOf(testWarning), 3u);
    EXPECT_EQ(depthOf(testPass), 1u);
    EXPECT_EQ(depthOf(testLog), 1u);
    TestSettingsType::s_logStacktraceOnPass = true;
    EXPECT_EQ(depthOf(testPass), 3u);
    EXPECT_EQ(depthOf(testXFail), 3u);
    EXPECT_EQ(depthOf(testLog), 1u);
    TestSettingsType::s_logStacktraceOnLog = true;
    EXPECT_EQ(depthOf(testLog), 3u);
    EXPECT_FALSE(wantCallStackForResult(TestResult::Skipped));
    EXPECT_FALSE(wantCallStackForResult(15));
}

TEST_F(Verdicts, StackTrace) {
    context.call(testStackTrace);
    EXPECT_TRUE(context.result->toList().empty());
    StoppingDebugger debugger;
    debugger.pushFrameAndSetCurrent(3, 0, 1);
    const auto trace = [&](const List& arguments) {
        QStringList lines;
        context.call(testStackTrace, arguments);
        for (const auto& location : context.result->toList())
            lines.append(location->toString().section(':', 1));
        return lines.join(' ');
    };
    EXPECT_EQ(trace({}), "3 7 20 -1");
    EXPECT_EQ(trace({integer(-5), integer(0)}), "3 7 20 -1");
    EXPECT_EQ(trace({integer(0), integer(1)}), "3");
    EXPECT_EQ(trace({integer(1), integer(2)}), "7 20");
    EXPECT_EQ(trace({integer(0x100000000), integer(0x100000000)}), "");
    context.call(testStackTrace, {text("1")});
    EXPECT_EQ(outcome(), "error 0: test::stackTrace() takes 0, 1 or 2 numeric arguments");
}

TEST_F(Verdicts, SectionsAndCounts) {
    context.call(testStartSection, {text("Title"), text("what it is")});
    const auto sections = report.all<SectionStarted>();
    ASSERT_EQ(sections.size(), 1u);
    EXPECT_EQ(sections[0].callStack, CallStack{context.frames[0]});
    context.call(testEndSection);
    EXPECT_EQ(outcome(), "null");
    context.call(testEndSection);
    EXPECT_TRUE(context.hasError());
    context.call(testEndSection, {text("x")});
    EXPECT_EQ(outcome(), "error 0: test::endSection takes no arguments");
    context.call(testStartSection);
    EXPECT_EQ(outcome(), "error 0: test::startSection takes 1 or 2 arguments");

    context.call(testPass, {text("m")});
    context.call(testResultCount, {text("passes")});
    EXPECT_EQ(outcome(), "1");
    context.call(testResultCount, {text("passed")});
    EXPECT_EQ(outcome(), "error 0: Unknown result category specified.");
    context.call(testResultCount);
    EXPECT_EQ(outcome(), "error 0: Expected one argument - test result category identifier");
}

TEST_F(Verdicts, FixatedPositionIsThatOfResults) {
    context.call(testFixateResultContext);
    context.call(testFail, {text("m")});
    EXPECT_EQ(report.results().back().callStack, CallStack{context.frames[1]});
    context.call(testRestoreResultContext);
    context.call(testFail, {text("m")});
    EXPECT_EQ(report.results().back().callStack, CallStack{context.frames[0]});
}

TEST_F(Verdicts, WithoutASinkNothingIsWritten) {
    FakeContext lonely;
    lonely.call(testPass, {text("m")});
    EXPECT_EQ(lonely.result->toString(), "true");
    for (const auto function : {testStartSection, testSkip, testResultCount})
        lonely.call(function, {text("passes")});
    EXPECT_EQ(lonely.result->toString(), "0");
    EXPECT_TRUE(report.entries.empty());
}

}  // namespace
}  // namespace Tamrix
