#include "runner/farm/casemerge.h"

#include <gtest/gtest.h>

#include "platform/testresult/journalreport.h"
#include "platform/testresult/testresult.h"
#include "runner/farm/opencases.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

class CaseMergeTest : public testing::Test {
protected:
    /// Writes what a worker does: the frame, a fact, and a case that stops in a section. What
    /// `complete` is not given is missing at the end.
    QString journalOf(const QString& name, bool isComplete) {
        const QString path = folder.path(name + ".jsonl");
        JournalReport journal(path);
        {
            TestResult result(&journal);
            result.startSuite("suite", "/suite");
            result.addEnvironment("Qt", "5");
            result.startCase(name, "/suite/" + name + "/test.py");
            result.startSection("open", "", LineInfo("/t.py", 3));
            result.addResult(TestResult::Pass, "fine", "", LineInfo("/t.py", 4));
            if (isComplete) {
                result.addResult(TestResult::Error, "Script Error", "", LineInfo("/t.py", 5));
                result.endCase();
                result.endSuite();
            }
            result.setComplete();
            journal.finish();
        }
        return path;
    }

    Tamrix::Test::SuiteFolder folder;
    Tamrix::Test::RecordingReport report;
    CaseMerge merge{&report};
};

TEST_F(CaseMergeTest, TakesTheCasesAndEachFactOnce) {
    for (const char* name : {"a", "b"}) {
        const CaseMerge::Result result = merge.merge(journalOf(name, true), {.name = name});
        EXPECT_EQ(result.outcome, CaseOutcome::Error);
        EXPECT_EQ(result.problem, QString());
    }
    const QStringList one = {"caseStart", "sectionStart", "result",
                             "result",    "sectionEnd",   "caseEnd"};
    EXPECT_EQ(report.kinds(), QStringList{"environment"} + one + one);
}

TEST_F(CaseMergeTest, CompletesWhatHasNoEnd) {
    CaseMerge::Case died{.name = "a", .script = "/suite/a/test.py"};
    died.error = "The process has ended";
    EXPECT_EQ(merge.merge(journalOf("a", false), died).outcome, CaseOutcome::Error);
    EXPECT_EQ(report.kinds(), (QStringList{"environment", "caseStart", "sectionStart", "result",
                                           "result", "sectionEnd", "caseEnd"}));
    EXPECT_EQ(report.results().back().callStack.front(), LineInfo("/suite/a/test.py", 0));

    CaseMerge::Case interrupted{.name = "b", .script = "/suite/b/test.py"};
    interrupted.isInterrupted = true;
    EXPECT_EQ(merge.merge(journalOf("b", false), interrupted).outcome, CaseOutcome::Interrupted);
    // A process that had not even begun.
    died.attempt = 2;
    EXPECT_EQ(merge.merge(folder.path("missing"), died).outcome, CaseOutcome::Error);
    EXPECT_EQ(report.all<CaseStarted>().back(), (CaseStarted{"a", "/suite/a/test.py", 2}));
}

TEST_F(CaseMergeTest, ATimeOutTellsWhereTheScriptStoodAndStandsInFront) {
    CaseMerge::Case slow{.name = "a", .script = "/suite/a/test.py"};
    slow.error = "It took too long";
    slow.errorTime = QDateTime::currentDateTime().addSecs(-60);
    merge.merge(journalOf("a", true), slow);
    const std::vector<ResultAdded> results = report.results();
    ASSERT_EQ(results.size(), 3u);
    EXPECT_EQ(results[1].message, QString("It took too long"));
    EXPECT_EQ(results[1].callStack.front(), LineInfo("/t.py", 5));
    EXPECT_EQ(results[2].message, QString("Script Error"));
}

TEST_F(CaseMergeTest, WhatRanWhenARunWasKilledIsTakenFromBesideItsJournal) {
    const QString journal = folder.path("run.jsonl");
    ASSERT_TRUE(renewOpenCases(journal).has_value());
    ASSERT_TRUE(QFile::rename(journalOf("a", false), openCasesFolder(journal) + "/1.jsonl"));
    folder.write("run.jsonl.running/keep.txt", "somebody else's");
    for (const bool isComplete : {false, true}) {
        Tamrix::Test::RecordingReport whole;
        RunEnd end(&whole);
        end.add({QDateTime(), SuiteStarted{"suite", {}}});
        if (isComplete)
            end.add({QDateTime(), SuiteEnded{}});
        end.addOpenCases(journal);
        EXPECT_EQ(whole.kinds(),
                  isComplete ? (QStringList{"suiteStart", "suiteEnd"})
                             : (QStringList{"suiteStart", "caseStart", "sectionStart", "result"}));
    }
    removeOpenCases(journal);
    EXPECT_EQ(QDir(openCasesFolder(journal)).entryList(QDir::Files), QStringList{"keep.txt"});
}

}  // namespace
}  // namespace Tamrix
