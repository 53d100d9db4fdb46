#include "runner/farm/casetimes.h"

#include <gtest/gtest.h>

#include "platform/testresult/journalreport.h"
#include "runner/suites/suitefolder.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

/// `at` and `took` in seconds; an hour has 3600 of them.
void addCase(ReportGenerator* report, const QString& name, int at, int took,
             bool isInterrupted = false) {
    const QDateTime noon(QDate(2024, 5, 1), QTime(12, 0));
    report->add({noon.addSecs(at), CaseStarted{name, "/s/" + name + "/test.py"}});
    report->add({noon.addSecs(at + took), CaseEnded{isInterrupted}});
}

QList<SuiteCase> casesOf(const QStringList& names) {
    QList<SuiteCase> cases;
    for (const QString& name : names)
        cases.append({name, {}, {}});
    return cases;
}

TEST(CaseTimes, TheLaterRunCountsWhateverTheOrderOfTheFiles) {
    CaseTimes times("s");
    times.add({QDateTime(), SuiteStarted{"s", {}}});
    addCase(&times, "a", 3600, 5);
    addCase(&times, "a", 0, 9);
    addCase(&times, "b", 0, 1);
    addCase(&times, "b", 3600, 30, true);
    times.add({QDateTime(), SuiteEnded{}});
    times.add({QDateTime(), SuiteStarted{"another suite", {}}});
    addCase(&times, "c", 0, 7);
    // What never ran is taken for average.
    EXPECT_EQ(times.expected(casesOf({"a", "b", "c"})), (std::vector<double>{5, 1, 3}));
    EXPECT_EQ(times.expected(casesOf({"c"})), (std::vector<double>{-1}));
    EXPECT_TRUE(times.expected({}).empty());
}

TEST(CaseTimes, AreKeptAsAJournalTogetherWithThoseOfOtherCases) {
    Tamrix::Test::SuiteFolder folder;
    for (const QStringList& names : {QStringList{"a", "b"}, QStringList{"b"}}) {
        CaseTimes earlier("s");
        EXPECT_EQ(earlier.readFolder(folder.path("history")), QStringList());
        HistoryReport history(folder.path("history"), "s", earlier);
        history.add({QDateTime(), SuiteStarted{"s", {}}});
        for (const QString& name : names)
            addCase(&history, name, names.size() == 1 ? 3600 : 0, 2 + names.size());
        history.finish();
        EXPECT_EQ(history.errorText(), QString());
    }
    folder.write("history/broken.jsonl", "no journal\n");
    CaseTimes times("s");
    const QStringList problems = times.readFolder(folder.path("history"));
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.front().contains("broken.jsonl:1: ")) << qPrintable(problems.front());
    EXPECT_EQ(times.expected(casesOf({"a", "b"})), (std::vector<double>{4, 3}));
    EXPECT_EQ(QDir(folder.path("history")).entryList(QDir::Files).size(), 2);

    HistoryReport history(folder.path("history/broken.jsonl/x"), "s", CaseTimes("s"));
    history.finish();
    EXPECT_TRUE(history.errorText().contains("broken.jsonl/x")) << qPrintable(history.errorText());
}

}  // namespace
}  // namespace Tamrix
