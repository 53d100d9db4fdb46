#include "platform/testresult/testresult.h"

#include <gmock/gmock.h>

#include "base/overloaded.h"
#include "support/recordingreport.h"
#include "support/warningrecorder.h"

using namespace Tamrix;
using Tamrix::Test::RecordingReport;
using Tamrix::Test::WarningRecorder;
using testing::ElementsAre;

namespace {

/// The course of a run as short texts: "[name" and "]extra" for suites and cases, "(title" and
/// ")title" for sections, messages for results.
std::vector<std::string> course(const RecordingReport& report) {
    std::vector<std::string> texts;
    const auto add = [&texts](const char* mark, const QString& text) {
        texts.push_back(mark + text.toStdString());
    };
    const auto end = [](bool isInterrupted) { return isInterrupted ? "interrupted" : "finished"; };
    for (const ReportEntry& entry : report.entries) {
        std::visit(Overloaded{
                       [&](const SuiteStarted& suite) { add("[", suite.name); },
                       [&](const SuiteEnded& suite) { add("]", end(suite.isInterrupted)); },
                       [&](const CaseStarted& testCase) { add("[", testCase.name); },
                       [&](const CaseEnded& testCase) { add("]", end(testCase.isInterrupted)); },
                       [&](const SectionStarted& section) { add("(", section.title); },
                       [&](const SectionEnded& section) { add(")", section.title); },
                       [&](const ResultAdded& result) { add("", result.message); },
                       [&](const auto&) { add("unexpected", ""); },
                   },
                   entry.event);
    }
    return texts;
}

class TestResultTest : public testing::Test {
protected:
    void add(TestResult::ResultType type, const QString& message,
             const QString& extra = QString()) {
        result.addResult(type, message, QString(), LineInfo(), extra);
    }

    RecordingReport report;
    TestResult result{&report};
};

TEST_F(TestResultTest, CarriesWhatItIsGiven) {
    const QDateTime time(QDate(2024, 2, 3), QTime(4, 5, 6, 7));
    const CallStack stack{{"/a.py", 3}, {"/b.py", 0}, {"/c.py", -1}};
    result.addResult(time, TestResult::Fail, "message", "detail", stack, "comment", 5);
    result.addResult(time, TestResult::Log, "", "", CallStack());
    result.addAttachment(TestResult::ImageAttachment, "picture", "/p.png", stack);
    result.addEndVideo("end", "/v.mp4", CallStack());

    ASSERT_EQ(report.kinds(), (QStringList{"result", "result", "attachment", "videoEnd"}));
    EXPECT_EQ(report.entries[0].time, time);
    const ResultAdded fail = report.results()[0];
    EXPECT_EQ(fail.type, 11);
    EXPECT_EQ(fail.message, "message");
    EXPECT_EQ(fail.detail, "detail");
    EXPECT_EQ(fail.callStack, stack);
    EXPECT_EQ(fail.comment, "comment");
    EXPECT_EQ(fail.value, 5);
    EXPECT_TRUE(report.results()[1].callStack.empty());
    EXPECT_EQ(report.all<FileAttached>()[0], (FileAttached{2, "picture", "/p.png", stack, false}));
    EXPECT_TRUE(report.entries[2].time.isValid());
    EXPECT_EQ(report.all<VideoEnded>()[0], (VideoEnded{"end", "/v.mp4", {}}));
}

TEST_F(TestResultTest, SectionsOfBothKindsShareOneNesting) {
    add(TestResult::SectionStart, "A", "feature");
    result.startSection("B", "b", LineInfo("/t.py", 1));
    EXPECT_EQ(result.endSection(LineInfo("/t.py", 2)), QString());
    EXPECT_EQ(report.all<SectionEnded>().back().callStack, CallStack({{"/t.py", 2}}));
    result.startSection("C", "left open by a script error", LineInfo());
    // The end of a row has no text of its own.
    add(TestResult::SectionEnd, QString(), "feature");
    EXPECT_EQ(report.all<SectionEnded>().back().kind, "feature");
    EXPECT_EQ(result.endSection(LineInfo()), "There is no open section");
    EXPECT_THAT(course(report), ElementsAre("(A", "(B", ")B", "(C", ")C", ")A"));
}

TEST_F(TestResultTest, TheEndOfASectionThatTheScriptClosedAlreadyEndsNoOther) {
    add(TestResult::SectionStart, "scenario", "scenario");
    add(TestResult::SectionStart, "step", "step");
    result.endSection(LineInfo());
    const WarningRecorder warnings;
    add(TestResult::SectionEnd, "step", "step");
    EXPECT_THAT(course(report), ElementsAre("(scenario", "(step", ")step"));
    EXPECT_EQ(warnings.messages(),
              QStringList{"There is no open section of the kind 'step' that 'step' could end"});
}

TEST_F(TestResultTest, OuterLevelsEndWhatIsOpenInThem) {
    {
        TestResult run(&report);
        run.startSuite("s", "/s");
        run.startSection("outside", "", LineInfo());
        run.startCase("one", "/one");
        run.startSection("S", "", LineInfo());
        run.startSection("T", "", LineInfo());
        run.startCase("two", "/two");
        run.endCase(true);
        run.endCase();
        run.startCase("three", "/three");
        run.endSuite();
        run.startSuite("t", "/t");
        run.startCase("four", "/four");
        run.startSection("U", "", LineInfo());
    }
    EXPECT_THAT(course(report),
                ElementsAre("[s", "(outside", ")outside", "[one", "(S", "(T", ")T", ")S",
                            "]finished", "[two", "]interrupted", "[three", "]finished", "]finished",
                            "[t", "[four", "(U", ")U", "]interrupted", "]interrupted"));
}

TEST_F(TestResultTest, CountsByCategoryWithinACase) {
    const struct {
        const char* category;
        TestResult::ResultType type;
        bool isVerdict;
    } rows[] = {
        {"passes", TestResult::Pass, true},
        {"fails", TestResult::Fail, true},
        {"xpasses", TestResult::UnexpectedPass, true},
        {"xfails", TestResult::ExpectedFail, true},
        {"errors", TestResult::Error, false},
        {"fatals", TestResult::Fatal, false},
        {"warnings", TestResult::Warning, false},
        {"skips", TestResult::Skipped, false},
        {"logs", TestResult::Log, false},
    };
    result.startCase("one", "/one");
    int verdicts = 0;
    int times = 0;
    for (const auto& row : rows) {
        ++times;
        for (int i = 0; i < times; ++i)
            add(row.type, "m");
        verdicts += row.isVerdict ? times : 0;
        EXPECT_EQ(result.count(row.category), times) << row.category;
    }
    EXPECT_EQ(result.count("tests"), verdicts);
    for (const char* unknown : {"", "pass", "Passes", "sections"})
        EXPECT_EQ(result.count(unknown), -1) << unknown;

    result.startCase("two", "/two");
    EXPECT_EQ(result.count("passes"), 0);
    EXPECT_EQ(result.count("tests"), 0);
}

TEST_F(TestResultTest, TheErrorThatEndsASkippedCaseCountsForNothing) {
    result.startCase("one", "/one");
    result.addResult(TestResult::Skipped, "No printer", "here", LineInfo(), "testcase");
    // Whatever an error's text repeats, it is one.
    result.addResult(TestResult::Error, "Script Error",
                     "ValueError: broken\nwhile handling tamrix.FatalError: No printer: here",
                     LineInfo());
    result.addSkipEcho(TestResult::Error, "Script Error", "tamrix.FatalError: No printer: here",
                       {LineInfo("/one", 3)});
    const auto results = report.results();
    EXPECT_FALSE(results[1].isEcho);
    EXPECT_TRUE(results[2].isEcho);
    EXPECT_EQ(results[2].callStack, CallStack{LineInfo("/one", 3)});
    EXPECT_EQ(result.count("errors"), 1);
}

TEST_F(TestResultTest, RemembersAnErrorOfTheScenario) {
    for (const TestResult::ResultType type :
         {TestResult::Pass, TestResult::ExpectedFail, TestResult::Warning, TestResult::Log}) {
        add(type, "m");
        EXPECT_FALSE(result.lastScenarioHasError()) << type;
    }
    for (const TestResult::ResultType type :
         {TestResult::Fatal, TestResult::Error, TestResult::Fail, TestResult::UnexpectedPass}) {
        add(type, "m");
        EXPECT_TRUE(result.lastScenarioHasError()) << type;
        add(TestResult::Pass, "m");
        EXPECT_TRUE(result.lastScenarioHasError()) << type;
        result.clearLastScenarioError();
    }
    result.addResult(TestResult::Skipped, "a", "b", LineInfo(), "testcase");
    result.addSkipEcho(TestResult::Error, "Script Error", "a: b", {});
    EXPECT_FALSE(result.lastScenarioHasError());
}

TEST_F(TestResultTest, TakesNothingWhenComplete) {
    result.startSuite("s", "/s");
    result.setComplete();
    add(TestResult::Fail, "late");
    result.addOutput(OutputStream::StandardOutput, "late");
    result.addEndVideo("late", "/v", CallStack());
    result.endSuite();
    EXPECT_TRUE(result.isComplete());
    EXPECT_EQ(result.count("fails"), 0);
    EXPECT_EQ(report.entries.size(), 1u);
}

TEST(TestResultWithoutGenerator, OnlyCounts) {
    TestResult result(nullptr);
    result.startSuite("s", "/s");
    result.startCase("c", "/c");
    result.addResult(TestResult::Pass, "m", "d", LineInfo());
    EXPECT_EQ(result.count("tests"), 1);
}

}  // namespace
