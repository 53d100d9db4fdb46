#include "platform/testresult/consolereport.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>

#include "platform/testresult/testresult.h"
#include "samplerun.h"

using namespace Tamrix;
using namespace Tamrix::Test;
using Verbosity = ConsoleReport::Verbosity;

namespace {

class ConsoleReportTest : public testing::Test {
protected:
    ConsoleReportTest() { buffer.open(QIODevice::WriteOnly); }

    std::string sampleRun(Verbosity verbosity, bool colour = false) {
        ConsoleReport report(&buffer, verbosity, colour);
        addSampleRun(&report);
        report.finish();
        return buffer.data().toStdString();
    }

    QBuffer buffer;
};

const char* const summary = R"(
4 cases: 1 passed, 1 failed, 1 skipped, 1 incomplete
Results: passes 1, fails 1, xfails 1, errors 1, warnings 1, skips 1, logs 1
The run did not come to its end.
Time: 10.00 s
)";

TEST_F(ConsoleReportTest, NormalTellsCasesFailuresAndOutput) {
    const std::string expected = R"(Suite suite_shop
logging in
no line feed
  PASS  tst_login  (4.00 s)
  tst_basket:
    /s/shared/scripts/helper.py:4: Fail: Comparison
        '1' and '2' are not equal
        Comment: the total
        called from /s/tst_login/test.py:9
    /s/tst_basket/test.py:12: Error: Script Error
        NameError: x
        is not defined
  FAIL  tst_basket  (1.50 s)
  SKIP  tst_print  (1.50 s)  No printer: here
  INCOMPLETE tst_lost  (0.50 s)
)";
    EXPECT_EQ(sampleRun(Verbosity::Normal), expected + summary);
}

TEST_F(ConsoleReportTest, QuietTellsFailuresOnly) {
    const std::string expected = R"(  tst_basket:
    /s/shared/scripts/helper.py:4: Fail: Comparison
        '1' and '2' are not equal
        Comment: the total
        called from /s/tst_login/test.py:9
    /s/tst_basket/test.py:12: Error: Script Error
        NameError: x
        is not defined
)";
    EXPECT_EQ(sampleRun(Verbosity::Quiet), expected + summary);
}

TEST_F(ConsoleReportTest, VerboseTellsEverything) {
    const std::string expected = R"(Suite suite_shop (/s)
  Warning: No application
  tst_login (/s/tst_login/test.py):
logging in
    Section: Form: with two fields
      /s/tst_login/test.py:4: Pass: Comparison
          '1' and '1' are equal
      /s/tst_login/test.py:5: Expected fail: Not verified
          False expression
          Comment: known since May
    End of section: Form
    Attached: Attached File: /r/a.txt
no line feed
  PASS  tst_login  (4.00 s)
)";
    EXPECT_EQ(sampleRun(Verbosity::Verbose).substr(0, expected.size()), expected);
    EXPECT_TRUE(buffer.data().contains("FatalError: No printer: here"));
}

TEST_F(ConsoleReportTest, ColouredReportShowsTheRunningCaseAndTakesItAway) {
    ConsoleReport report(&buffer, Verbosity::Normal, true);
    FixedClock clock(&report);
    TestResult result(&clock);
    result.startSuite("s", "/s");
    result.startCase("one", "/one");
    EXPECT_TRUE(buffer.data().endsWith("Suite s\n  ...   one"));
    result.addOutput("stdout", "half a ");
    EXPECT_TRUE(buffer.data().endsWith("one\r\x1b[Khalf a "));
    result.addOutput("stdout", "line\n");
    EXPECT_TRUE(buffer.data().endsWith("half a line\n  ...   one"));
    result.endCase();
    EXPECT_TRUE(buffer.data().endsWith("one\r\x1b[K  \x1b[32mPASS  one  (1.50 s)\x1b[0m\n"));
}

TEST_F(ConsoleReportTest, MessagesCannotControlTheTerminalAndOutputIsVerbatim) {
    ConsoleReport report(&buffer, Verbosity::Normal, false);
    TestResult result(&report);
    result.startCase(QString("c\x1b[2J"), "/c");
    const QString wild =
        QString::fromUtf8("a\tb\nc\x1b[2J\r\x07\x7f\xc2\x9b") + QChar(0xd800) + QChar(0);
    result.addOutput("stdout", QStringLiteral("\x1b[1mbold\r\n"));
    result.addResult(TestResult::Fail, wild, "", LineInfo());
    EXPECT_EQ(buffer.data().toStdString(),
              "\x1b[1mbold\r\n"
              "  c\\x1b[2J:\n"
              "    Fail: a\tb\n"
              "        c\\x1b[2J\\x0d\\x07\\x7f\\x9b\\ud800\\x00\n");
}

TEST_F(ConsoleReportTest, FailuresOutsideTheCasesAndInterruptionsAreTold) {
    ConsoleReport report(&buffer, Verbosity::Quiet, false);
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
    ConsoleReport report(&full, Verbosity::Verbose, false);
    addSampleRun(&report);
    report.finish();
    EXPECT_EQ(report.errorText(),
              "The console report could not be written: No space left on device");
}

}  // namespace
