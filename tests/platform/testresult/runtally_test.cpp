#include "platform/testresult/runtally.h"

#include <gtest/gtest.h>

#include "platform/testresult/samplerun.h"
#include "support/recordingreport.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

/// An event at an unknown time.
ReportEntry entryOf(ReportEvent event) {
    return {QDateTime(), std::move(event)};
}

ReportEntry resultOf(int type) {
    ResultAdded result;
    result.type = type;
    result.message = "message";
    return entryOf(result);
}

ReportEntry skipOf(const QString& what) {
    ResultAdded result;
    result.type = TestResult::Skipped;
    result.skipped = what;
    return entryOf(result);
}

ReportEntry echoOf(int type) {
    ResultAdded result;
    result.type = type;
    result.isEcho = true;
    return entryOf(result);
}

TEST(RunTally, GivesACaseItsOutcome) {
    const ReportEntry pass = resultOf(TestResult::Pass);
    const ReportEntry fail = resultOf(TestResult::Fail);
    const ReportEntry error = resultOf(TestResult::Error);
    const ReportEntry skip = skipOf("testcase");
    const ReportEntry finished = entryOf(CaseEnded{false});
    const ReportEntry interrupted = entryOf(CaseEnded{true});
    const struct {
        const char* description;
        std::vector<ReportEntry> entries;
        CaseOutcome outcome;
        bool anyFailure;
    } rows[] = {
        {"nothing happened", {finished}, CaseOutcome::Passed, false},
        {"harmless results",
         {pass, resultOf(TestResult::Warning), resultOf(TestResult::ExpectedFail), finished},
         CaseOutcome::Passed,
         false},
        {"failed verdict", {pass, fail, pass, finished}, CaseOutcome::Failed, true},
        {"unexpected pass",
         {resultOf(TestResult::UnexpectedPass), finished},
         CaseOutcome::Failed,
         true},
        {"script error", {error, finished}, CaseOutcome::Error, true},
        {"fatal", {resultOf(TestResult::Fatal), finished}, CaseOutcome::Error, true},
        {"the first failure decides", {fail, error, finished}, CaseOutcome::Failed, true},
        {"skip", {skip, echoOf(TestResult::Error), finished}, CaseOutcome::Skipped, false},
        {"failure before a skip", {fail, skip, finished}, CaseOutcome::Failed, true},
        {"error in the clean-up of a skipped case",
         {skip, error, finished},
         CaseOutcome::Error,
         true},
        {"skipped scenario", {skipOf("scenario"), finished}, CaseOutcome::Passed, false},
        {"killed", {pass}, CaseOutcome::Incomplete, false},
        {"killed after a failure", {fail}, CaseOutcome::Incomplete, true},
        {"interrupted after a failure", {fail, interrupted}, CaseOutcome::Interrupted, true},
        {"a number that is no result", {resultOf(2), finished}, CaseOutcome::Passed, false},
    };
    for (const auto& row : rows) {
        RunTally tally;
        tally.add(entryOf(SuiteStarted{"suite", ""}));
        tally.add(entryOf(CaseStarted{"case", ""}));
        for (const ReportEntry& entry : row.entries)
            tally.add(entry);
        EXPECT_EQ(tally.suites().front().cases.front().outcome(), row.outcome) << row.description;
        EXPECT_EQ(tally.anyFailure(), row.anyFailure) << row.description;
        EXPECT_EQ(tally.caseCount(row.outcome), 1) << row.description;
    }
}

TEST(RunTally, AddsUpARun) {
    RunTally tally;
    RecordingReport report;
    addSampleRun(&report);
    for (const ReportEntry& entry : report.entries)
        tally.add(entry);

    EXPECT_EQ(tally.caseCount(), 4);
    EXPECT_TRUE(tally.isIncomplete());
    EXPECT_FALSE(tally.isInterrupted());
    EXPECT_EQ(tally.resultCount(TestResult::Error), 1);
    EXPECT_EQ(tally.resultCount(TestResult::Warning), 1);
    EXPECT_EQ(tally.failureCountOutsideCases(), 0);
    const CaseTally& basket = tally.suites().front().cases[1];
    EXPECT_EQ(basket.name, "tst_basket");
    EXPECT_EQ(basket.path, "/s/tst_basket/test.py");
    EXPECT_EQ(basket.seconds(), 1.5);
    ASSERT_EQ(basket.failures.size(), 2u);
    EXPECT_EQ(basket.failures[0].callStack.size(), 2u);
    EXPECT_EQ(basket.failures[0].comment, "the total");
    EXPECT_EQ(tally.suites().front().cases[2].skipText, "No printer: here");
}

TEST(RunTally, OfACaseThatRanAgainOnlyTheLastAttemptCounts) {
    RunTally tally;
    RecordingReport report;
    addRepeatedRun(&report);
    for (const ReportEntry& entry : report.entries)
        tally.add(entry);
    EXPECT_EQ(tally.caseCount(), 4);
    EXPECT_EQ(tally.caseCount(CaseOutcome::Passed), 1);
    EXPECT_EQ(tally.caseCount(CaseOutcome::Flaky), 2);
    EXPECT_EQ(tally.caseCount(CaseOutcome::Failed), 1);
    EXPECT_FALSE(tally.isIncomplete());
    EXPECT_TRUE(tally.anyFailure());
    EXPECT_EQ(tally.resultCount(TestResult::Fail), 1);
    EXPECT_EQ(tally.resultCount(TestResult::Error), 0);
    const CaseTally& last = tally.suites().front().cases.back();
    ASSERT_NE(last.previous, nullptr);
    ASSERT_NE(last.previous->previous, nullptr);
    EXPECT_EQ(last.previous->previous->attempt, 1);
}

TEST(RunTally, CountsFailuresOutsideTheCases) {
    RunTally tally;
    tally.add(entryOf(SuiteStarted{"suite", ""}));
    tally.add(resultOf(TestResult::Fatal));
    tally.add(entryOf(SuiteEnded{true}));
    tally.add(resultOf(TestResult::Error));
    EXPECT_TRUE(tally.anyFailure());
    EXPECT_TRUE(tally.isInterrupted());
    EXPECT_FALSE(tally.isIncomplete());
    EXPECT_EQ(tally.failureCountOutsideCases(), 2);
    EXPECT_EQ(tally.caseCount(), 0);
}

TEST(RunTally, TakesEntriesInAnyOrder) {
    std::mt19937 random(7);
    for (int run = 0; run < 200; ++run) {
        RunTally tally;
        for (int i = 0; i < 30; ++i)
            tally.add(entryOf(randomEvent(random)));
        EXPECT_LE(tally.caseCount(CaseOutcome::Passed), tally.caseCount());
        EXPECT_EQ(tally.seconds(), 0);
    }
}

TEST(RunTally, KeepsScenariosApart) {
    RecordingReport report;
    TestResult result(&report);
    const LineInfo place("/s/x.feature", 7);
    result.startSuite("suite", "/s");
    result.startCase("case", "/s/case/test.py");
    const auto start = [&](const char* kind, const char* title) {
        result.addResult(TestResult::SectionStart, title, "", place, kind);
    };
    const auto end = [&](const char* kind) {
        result.addResult(TestResult::SectionEnd, "", "", LineInfo(), kind);
    };
    const auto step = [&](const char* title, TestResult::ResultType type) {
        start("step", title);
        result.describeItem({"Given ", "", ""});
        result.addResult(type, "message", "", LineInfo());
        end("step");
    };
    start("feature", "shop");
    start("scenario", "fails");
    step("good", TestResult::Pass);
    step("bad", TestResult::Fail);
    step("worse", TestResult::Error);
    end("scenario");
    result.addResult(TestResult::Error, "a hook", "", LineInfo());
    start("scenariooutline", "many");
    start("row", "n=1");
    step("good", TestResult::Pass);
    end("row");
    end("scenariooutline");
    start("scenario", "cut short");
    result.endCase();

    RunTally tally;
    QStringList running;
    for (const ReportEntry& entry : report.entries) {
        tally.add(entry);
        if (eventOf<SectionEnded>(entry) && tally.scenario() && tally.scenario()->isEnded)
            running += tally.scenario()->name;
    }
    EXPECT_EQ(running.join(", "), "fails, many (n=1), cut short");
    const CaseTally& testCase = tally.suites().front().cases.front();
    ASSERT_EQ(testCase.scenarios.size(), 3u);
    EXPECT_EQ(testCase.failures.size(), 3u);
    ASSERT_EQ(testCase.failuresOutsideScenarios.size(), 1u);
    EXPECT_EQ(testCase.failuresOutsideScenarios[0].message, "a hook");
    const ScenarioTally& failed = testCase.scenarios[0];
    EXPECT_EQ(failed.outcome(), CaseOutcome::Failed);
    EXPECT_EQ(failed.failedStep, "Given bad");
    EXPECT_EQ(failed.failures.size(), 2u);
    EXPECT_EQ(failed.feature, "shop");
    EXPECT_EQ(failed.line, 7);
    EXPECT_EQ(testCase.scenarios[1].outcome(), CaseOutcome::Passed);
    EXPECT_EQ(tally.scenario(), nullptr);
}

}  // namespace
