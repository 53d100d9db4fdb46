#include "runner/farm/bundles.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>
#include <memory>

#include "platform/testresult/journalreport.h"
#include "platform/testresult/runtally.h"
#include "platform/testresult/testresult.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

class BundlesTest : public testing::Test {
protected:
    /// The bundle of a shard with these cases; a "!" behind a name fails it, a "?" lets the run be
    /// killed in it.
    QString bundle(const QString& name, const QString& shard, const QStringList& cases,
                   const QString& suite = "suite") {
        JournalReport journal(folder.path(name + "/journal.jsonl"));
        TestResult result(&journal);
        result.startSuite(suite, "/suite");
        result.addEnvironment("Qt", "5");
        if (!shard.isEmpty())
            result.addEnvironment(shardFactName, shard + " of 4 cases, division ab12");
        for (QString each : cases) {
            const QChar end = each.back();
            each.remove(QRegularExpression("[!?]"));
            result.startCase(each, "/suite/" + each + "/test.py");
            result.addAttachment(TestResult::FileAttachment, "file",
                                 folder.path(name + "/" + each + "/file.txt"), {});
            if (end == '!')
                result.addResult(TestResult::Fail, "failed", "", LineInfo());
            if (end == '?') {
                result.setComplete();
                journal.finish();
                return folder.path(name);
            }
            result.endCase();
        }
        result.endSuite();
        return folder.path(name);
    }

    /// The problems, and in `tally` what became of the cases.
    QStringList merge(const QStringList& bundles) {
        report = {};
        BundleMerge merge(&report);
        for (const QString& each : bundles)
            merge.add(each);
        merge.merge();
        tally = std::make_unique<RunTally>();
        for (const ReportEntry& entry : report.entries)
            tally->add(entry);
        return merge.problems();
    }

    QString names() const {
        QStringList names;
        for (const CaseStarted& each : report.all<CaseStarted>())
            names += each.name;
        return names.join(' ');
    }

    Tamrix::Test::SuiteFolder folder;
    Tamrix::Test::RecordingReport report;
    std::unique_ptr<RunTally> tally;
};

TEST_F(BundlesTest, ShardsBecomeOneRun) {
    const QString first = bundle("1", "1/2", {"a", "c!"});
    const QString second = bundle("2", "2/2", {"b", "d"});
    EXPECT_EQ(merge({first, second}), QStringList());
    EXPECT_EQ(names(), "a c b d");
    EXPECT_EQ(tally->suites().size(), 1u);
    EXPECT_EQ(tally->caseCount(CaseOutcome::Passed), 3);
    EXPECT_EQ(tally->caseCount(CaseOutcome::Failed), 1);
    EXPECT_FALSE(tally->isIncomplete());
    EXPECT_EQ(report.all<EnvironmentFact>().size(), 3u) << "each fact once";
    // A bundle names its files by relative paths, which lead to where it is now.
    EXPECT_TRUE(
        Tamrix::Test::readFile(first + "/journal.jsonl").contains("\"path\":\"a/file.txt\""));
    ASSERT_TRUE(QDir().rename(first, folder.path("moved")));
    EXPECT_EQ(merge({folder.path("moved"), second}), QStringList());
    EXPECT_EQ(report.all<FileAttached>().front().path, folder.path("moved/a/file.txt"));
}

TEST_F(BundlesTest, WhatIsMissingIsToldAndWhatIsThereIsKept) {
    const QString first = bundle("1", "1/2", {"a", "c"});
    const QString cut = bundle("cut", "2/2", {"b", "d?"});
    const QString other = bundle("other", "2/2", {"x"}, "another suite");
    folder.write("broken/journal.jsonl", "no journal\n");
    const QString gap = "the run of '" + cut + "/journal.jsonl' did not come to its end";
    const struct {
        const char* description;
        QStringList bundles;
        QStringList problems;
        QString names;
        bool anyFailure;
    } table[] = {
        {"a shard is missing",
         {first},
         {"of 2 shards are missing: 2", "2 of 4 test cases have no result"},
         "a c",
         true},
        {"a run was killed",
         {first, cut},
         {gap, "1 of 4 test cases have no result"},
         "a c b d",
         true},
        {"a shard twice: the whole one counts",
         {first, cut, bundle("2", "2/2", {"b", "d"})},
         {gap, "'" + folder.path("2") + "/journal.jsonl' is the shard 2, as '" + cut +
                   "/journal.jsonl'"},
         "a c b d",
         false},
        {"another suite",
         {first, bundle("2", "2/2", {"b", "d"}), other},
         {"'" + other +
          "/journal.jsonl' is of the suite 'another suite', not of 'suite', and left "
          "out"},
         "a c b d",
         false},
        {"no journal",
         {folder.path("none"), first, bundle("2", "2/2", {"b", "d"})},
         {"there is no journal '" + folder.path("none") + "'"},
         "a c b d",
         true},
        {"no shards", {bundle("3", "", {"e"})}, {}, "e", false},
    };
    for (const auto& row : table) {
        EXPECT_EQ(merge(row.bundles), row.problems) << row.description;
        EXPECT_EQ(names(), row.names) << row.description;
        EXPECT_EQ(tally->anyFailure(), row.anyFailure) << row.description;
    }
    EXPECT_TRUE(merge({folder.path("broken"), first}).front().contains("broken/journal.jsonl:1: "));
}

}  // namespace
}  // namespace Tamrix
