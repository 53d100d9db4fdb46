#include "interpreter/generic/textdifference.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "interpreter/generic/testfunctions.h"
#include "support/fakelanguage.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

/// The numbers from 1 on, a line each.
QString numbers(int count) {
    QString text;
    for (int number = 1; number <= count; ++number)
        text += QString::number(number) + "\n";
    return text;
}

TEST(TextDifference, ShowsTheDifferingLinesWithThoseAroundThem) {
    const QString tail = QString(80, 'x');
    const struct {
        QString first;
        QString second;
        const char* difference;
    } rows[] = {
        // A look is enough.
        {"a", "b", ""},
        {numbers(3), numbers(3), ""},
        // One line each.
        {"b" + tail, "c" + tail,
         "@@ character 1 @@\n-bxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...\n"
         "+cxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."},
        {tail + "1", tail,
         "@@ character 81 @@\n-...xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx1\n"
         "+...xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"},
        // Several lines.
        {"a\nb\n", "a\nc\n", "@@ -1,2 +1,2 @@\n a\n-b\n+c"},
        {"a\nb", "a\nb\n", "@@ -1,2 +1,2 @@\n a\n-b\n\\ No newline at end of text\n+b"},
        {"a\r\n", "a\n", "@@ -1 +1 @@\n-a\r\n+a"},
        {"", "a\nb\n", "@@ -0,0 +1,2 @@\n+a\n+b"},
        {numbers(20), numbers(20).replace("\n10\n", "\nten\n"),
         "@@ -7,7 +7,7 @@\n 7\n 8\n 9\n-10\n+ten\n 11\n 12\n 13"},
        // Two places are told together when they are near each other.
        {numbers(30), numbers(30).replace("\n2\n", "\n").replace("\n8\n", "\n8\nx\n"),
         "@@ -1,11 +1,11 @@\n 1\n-2\n 3\n 4\n 5\n 6\n 7\n 8\n+x\n 9\n 10\n 11"},
        {numbers(30), numbers(30).replace("\n2\n", "\n").replace("\n29\n", "\ny\n"),
         "@@ -1,5 +1,4 @@\n 1\n-2\n 3\n 4\n 5\n"
         "@@ -26,5 +25,5 @@\n 26\n 27\n 28\n-29\n+y\n 30"},
        // Half a character each, which no encoding can hold.
        {QString("a\n") + QChar(0xd800), QString("a\n") + QChar(0xd801),
         "@@ character 3 @@\n-a\n?\n+a\n?"},
    };
    for (const auto& row : rows) {
        QString difference = explainDifference(row.first, row.second);
        for (QChar& c : difference)
            c = c.isSurrogate() ? QChar('?') : c;
        EXPECT_EQ(difference, QString(row.difference));
    }
}

TEST(TextDifference, StaysShortAndQuickWhateverTheTexts) {
    QElapsedTimer timer;
    timer.start();
    // Far away, but the only one.
    EXPECT_EQ(explainDifference(numbers(300000), numbers(299999) + "x\n"),
              "@@ -299997,4 +299997,4 @@\n 299997\n 299998\n 299999\n-300000\n+x");
    const QString all = explainDifference(numbers(3000), QString("z\n").repeated(3000));
    EXPECT_EQ(all.count('\n'), 1001);
    EXPECT_TRUE(all.endsWith("(further differences are left out)"));
    const QString wide =
        explainDifference(QString(5000000, 'a') + "\n1", QString(5000000, 'b') + "\n1");
    EXPECT_LT(wide.size(), 5000);
    EXPECT_TRUE(wide.contains("[... 4998000 more characters]"));
    // Lines of which both have many, in no common order.
    QString first;
    QString second;
    for (int line = 0; line < 20000; ++line) {
        first += QString::number(line * 7919 % 977) + "\n";
        second += QString::number(line * 104729 % 983) + "\n";
    }
    EXPECT_TRUE(explainDifference(first, second).startsWith("@@ -1,"));
    EXPECT_TRUE(explainDifference(first + first, second + second)
                    .endsWith("(the first differing line only, of 40000 and 40000 lines)"));
    // Far from what it takes, but also from what a person would wait.
    EXPECT_LT(timer.elapsed(), 60000);
}

TEST(TextDifference, BelongsToAFailedComparisonOnly) {
    using namespace Test;
    RecordingReport report;
    TestResult result(&report);
    FakeContext context(&result);
    const struct {
        ScriptContext::Function function;
        const char* second;
        const char* explanation;
    } rows[] = {
        {testCompare, "a\nc\n", "@@ -1,2 +1,2 @@\n a\n-b\n+c"},
        {testCompare, "a\nb\n", ""},
        {testXCompare, "a\nc\n", ""},
        {testXCompare, "a\nb\n", ""},
    };
    for (const auto& row : rows) {
        context.call(row.function, {text("a\nb\n"), text(row.second)});
        EXPECT_EQ(report.results().back().explanation, QString(row.explanation));
    }
    EXPECT_EQ(report.results().front().detail, "'a\nb\n' and 'a\nc\n' are not equal");
}

}  // namespace
}  // namespace Tamrix
