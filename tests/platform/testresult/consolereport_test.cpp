#include "platform/testresult/consolereport.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>

#include "platform/testresult/samplerun.h"
#include "platform/testresult/testresult.h"
#include "support/golden.h"

using namespace Tamrix;
using namespace Tamrix::Test;
using Verbosity = ConsoleReport::Verbosity;

namespace {

class ConsoleReportTest : public testing::Test {
protected:
    ConsoleReportTest() { buffer.open(QIODevice::WriteOnly); }

    static QString sampleRun(Verbosity verbosity) {
        QBuffer output;
        output.open(QIODevice::WriteOnly);
        ConsoleReport report(&output, verbosity, ConsoleReport::Decoration::None);
        addSampleRun(&report);
        report.finish();
        return QString::fromUtf8(output.data());
    }

    QBuffer buffer;
};

TEST_F(ConsoleReportTest, TellsARunByVerbosity) {
    const struct {
        Verbosity verbosity;
        const char* golden;
    } rows[] = {
        {Verbosity::Quiet, "testresult/console-quiet.txt"},
        {Verbosity::Normal, "testresult/console-normal.txt"},
        {Verbosity::Verbose, "testresult/console-verbose.txt"},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(compareWithGolden(row.golden, sampleRun(row.verbosity)));
}

TEST_F(ConsoleReportTest, TellsAttempts) {
    ConsoleReport report(&buffer, Verbosity::Normal, ConsoleReport::Decoration::None);
    addRepeatedRun(&report);
    report.finish();
    EXPECT_TRUE(
        compareWithGolden("testresult/console-attempts.txt", QString::fromUtf8(buffer.data())));
}

TEST_F(ConsoleReportTest, AStatusTakesThePlaceOfTheRunningCase) {
    ConsoleReport report(&buffer, Verbosity::Normal,
                         ConsoleReport::Decoration::ColoursAndRunningCase);
    report.showStatus("1/2 done");
    EXPECT_EQ(buffer.data(), "  ...   1/2 done");
    report.showStatus("1/2 done");
    EXPECT_EQ(buffer.data(), "  ...   1/2 done");
    report.add({QDateTime(), CaseStarted{"one", "/one"}});
    report.add({QDateTime(), CaseEnded{}});
    EXPECT_TRUE(
        buffer.data().endsWith("\r\x1b[K  \x1b[32mPASS  one  (0.00 s)\x1b[0m\n"
                               "  ...   1/2 done"))
        << buffer.data().toStdString();
    report.finish();
    EXPECT_FALSE(buffer.data().endsWith("done"));
}

TEST_F(ConsoleReportTest, ColouredReportShowsTheRunningCaseAndTakesItAway) {
    ConsoleReport report(&buffer, Verbosity::Normal,
                         ConsoleReport::Decoration::ColoursAndRunningCase);
    FixedClock clock(&report);
    TestResult result(&clock);
    result.startSuite("s", "/s");
    result.startCase("one", "/one");
    EXPECT_TRUE(buffer.data().endsWith("Suite s\n  ...   one"));
    result.addOutput(OutputStream::StandardOutput, "half a ");
    EXPECT_TRUE(buffer.data().endsWith("one\r\x1b[Khalf a "));
    result.addOutput(OutputStream::StandardOutput, "line\n");
    EXPECT_TRUE(buffer.data().endsWith("half a line\n  ...   one"));
    result.endCase();
    EXPECT_TRUE(buffer.data().endsWith("one\r\x1b[K  \x1b[32mPASS  one  (1.50 s)\x1b[0m\n"));
}

TEST_F(ConsoleReportTest, MessagesCannotControlTheTerminalAndOutputIsVerbatim) {
    ConsoleReport report(&buffer, Verbosity::Normal, ConsoleReport::Decoration::None);
    TestResult result(&report);
    result.startCase(QString("c\x1b[2J"), "/c");
    const QString wild =
        QString::fromUtf8("a\tb\nc\x1b[2J\r\x07\x7f\xc2\x9b") + QChar(0xd800) + QChar(0);
    result.addOutput(OutputStream::StandardOutput, QStringLiteral("\x1b[1mbold\r\n"));
    result.addResult(TestResult::Fail, wild, "", LineInfo());
    EXPECT_EQ(buffer.data().toStdString(),
              "\x1b[1mbold\r\n"
              "  c\\x1b[2J:\n"
              "    Fail: a\tb\n"
              "        c\\x1b[2J\\x0d\\x07\\x7f\\x9b\\ud800\\x00\n");
}

TEST_F(ConsoleReportTest, FailuresOutsideTheCasesAndInterruptionsAreTold) {
    ConsoleReport report(&buffer, Verbosity::Quiet, ConsoleReport::Decoration::None);
    FixedClock clock(&report);
    TestResult result(&clock);
    result.startSuite("s", "/s");
    result.addResult(TestResult::Fatal, "No plug-in", "it is missing", LineInfo("/s/t.py", -1));
    result.startCase("one", "/one");
    result.endSuite(true);
    report.finish();
    EXPECT_EQ(buffer.data().toStdString(), R"(Suite s
  /s/t.py: Fatal: No plug-in
      it is missing

1 case: 1 interrupted
Failures outside the cases: 1
Results: fatals 1
The run was interrupted.
Time: 2.00 s
)");
}

TEST_F(ConsoleReportTest, TellsOnceThatItCannotWrite) {
    QFile full("/dev/full");
    ASSERT_TRUE(full.open(QIODevice::WriteOnly));
    ConsoleReport report(&full, Verbosity::Verbose, ConsoleReport::Decoration::None);
    addSampleRun(&report);
    report.finish();
    EXPECT_EQ(report.errorText(),
              "The report '/dev/full' can't be written: No space left on device");
}

}  // namespace
