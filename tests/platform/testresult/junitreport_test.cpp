#include "platform/testresult/junitreport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include "platform/testresult/resulttext.h"
#include "samplerun.h"

using namespace Tamrix;
using namespace Tamrix::Test;
using Kind = ReportEntry::Kind;

namespace {

class JUnitReportTest : public testing::Test {
protected:
    /// Runs `add` with a report, finishes it and returns the file.
    template <typename Add>
    QByteArray report(Add add) {
        JUnitReport junit(path);
        add(&junit);
        junit.finish();
        EXPECT_EQ(junit.errorText(), QString());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// What the schema has against the file; empty when nothing.
    std::string schemaErrors() const {
        QProcess process;
        process.start(XMLLINT,
                      {"--noout", "--nonet", "--schema",
                       TAMRIX_TEST_SOURCE_DIR "/tests/platform/testresult/junit.xsd", path});
        if (!process.waitForFinished())
            return "xmllint did not run";
        return process.exitCode() == 0 ? std::string()
                                       : process.readAllStandardError().toStdString();
    }

    QTemporaryDir directory;
    QString path = directory.filePath("junit.xml");
};

/// The texts of all elements of a name, and the error of the reader if there is one.
QStringList elementTexts(const QByteArray& xml, const QString& name) {
    QStringList texts;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == name)
            texts += reader.readElementText();
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return texts;
}

TEST_F(JUnitReportTest, TellsARun) {
    const QByteArray xml = report(addSampleRun);
    EXPECT_EQ(schemaErrors(), "");
    EXPECT_EQ(xml.toStdString(), R"xml(<?xml version="1.0" encoding="UTF-8"?>
<testsuites tests="4" failures="1" errors="1" time="10.000">
  <testsuite name="suite_shop" tests="4" failures="1" errors="1" skipped="1" time="10.000" timestamp="2024-05-01T12:00:00">
    <testcase name="tst_login" classname="suite_shop" file="/s/tst_login/test.py" time="4.000">
      <system-out>logging in
[[ATTACHMENT|/r/a.txt]]
</system-out>
      <system-err>no line feed</system-err>
    </testcase>
    <testcase name="tst_basket" classname="suite_shop" file="/s/tst_basket/test.py" time="1.500">
      <failure message="Comparison: '1' and '2' are not equal (and 1 more)" type="Fail">/s/shared/scripts/helper.py:4: Fail: Comparison
'1' and '2' are not equal
Comment: the total
called from /s/tst_login/test.py:9

/s/tst_basket/test.py:12: Error: Script Error
NameError: x
is not defined</failure>
    </testcase>
    <testcase name="tst_print" classname="suite_shop" file="/s/tst_print/test.py" time="1.500">
      <skipped message="No printer: here"></skipped>
    </testcase>
    <testcase name="tst_lost" classname="suite_shop" file="/s/tst_lost/test.py" time="0.500">
      <error message="The run ended before this did" type="Incomplete"></error>
      <system-out>Log: before the kill
</system-out>
    </testcase>
    <system-out>Warning: No application
</system-out>
  </testsuite>
</testsuites>
)xml");
}

TEST_F(JUnitReportTest, ShowsWhatHappenedOutsideTheCases) {
    const struct {
        const char* description;
        bool addsFailure;
        bool startsCase;
        bool isInterrupted;
        const char* contained;
        int cases;
    } rows[] = {
        {"nothing", false, false, false, "tests=\"0\"", 0},
        {"failure", true, false, false, "<error message=\"No plug-in: gone\" type=\"Fatal\">", 1},
        {"failure and interruption", true, true, true, "type=\"Interrupted\">", 2},
        {"interruption between the cases", false, false, true, "type=\"Interrupted\">", 1},
        {"interruption of a case", false, true, true, "type=\"Interrupted\">", 1},
    };
    for (const auto& row : rows) {
        const QByteArray xml = report([&row](ReportGenerator* junit) {
            TestResult result(junit);
            result.startSuite("s", "/s");
            if (row.addsFailure)
                result.addResult(TestResult::Fatal, "No plug-in", "gone", LineInfo());
            if (row.startsCase)
                result.startCase("c", "/c");
            result.endSuite(row.isInterrupted);
        });
        EXPECT_EQ(schemaErrors(), "") << row.description;
        EXPECT_TRUE(xml.contains(row.contained)) << row.description << "\n" << xml.toStdString();
        EXPECT_EQ(xml.count("<testcase "), row.cases) << row.description;
    }
    // Killed between the cases.
    const QByteArray xml = report([](ReportGenerator* junit) {
        TestResult result(junit);
        result.startSuite("s", "/s");
        result.setComplete();
    });
    EXPECT_TRUE(xml.contains("type=\"Incomplete\"")) << xml.toStdString();
}

TEST_F(JUnitReportTest, ReplacesCharactersThatXmlForbids) {
    const struct {
        QString text;
        QString escaped;
    } rows[] = {
        {QString(QChar(0)) + "a\x1f", "\\x00a\\x1f"},
        {"]]> <![CDATA[ & \" '", "]]> <![CDATA[ & \" '"},
        // Every reader of XML takes a carriage return for the end of a line.
        {QString("a\tb\nc\rd"), QString("a\tb\nc\nd")},
        {QString(QChar(0xfffe)) + QChar(0xffff) + QChar(0xfffd),
         QStringLiteral("\\ufffe\\uffff") + QChar(0xfffd)},
        {QString(QChar(0xd83d)) + "x" + QChar(0xde00), "\\ud83dx\\ude00"},
        {QString::fromUtf8("\xf0\x9f\x98\x80"), QString::fromUtf8("\xf0\x9f\x98\x80")},
    };
    for (const auto& row : rows) {
        const QByteArray xml = report([&row](ReportGenerator* junit) {
            TestResult result(junit);
            result.startCase("c", "/c");
            result.addOutput("stdout", row.text);
        });
        EXPECT_EQ(elementTexts(xml, "system-out"), QStringList{row.escaped});
        EXPECT_EQ(schemaErrors(), "");
    }
}

TEST_F(JUnitReportTest, StaysWellFormedWhateverTheTexts) {
    std::mt19937 random(99);
    for (int run = 0; run < 300; ++run) {
        QString output;
        const QByteArray xml = report([&](ReportGenerator* junit) {
            for (int i = 0; i < 20; ++i) {
                ReportEntry entry;
                entry.kind = Kind(random() % 11);
                entry.type = int(random() % 16);
                entry.message = randomText(random, 12);
                entry.detail = randomText(random, 12);
                entry.extra = random() % 2 ? randomText(random, 12) : QString("testcase");
                entry.path = randomText(random, 12);
                entry.callStack = {{randomText(random, 12), int(random() % 9)}};
                junit->add(entry);
            }
        });
        elementTexts(xml, "system-out");
        if (run % 50 == 0) {
            EXPECT_EQ(schemaErrors(), "");
        }
    }
}

TEST_F(JUnitReportTest, LeavesNoHalfWrittenFile) {
    report(addSampleRun);
    // A folder that can't take the new file, whoever runs the test.
    JUnitReport junit("/proc/self/junit.xml");
    junit.finish();
    EXPECT_NE(junit.errorText(), QString());
    EXPECT_TRUE(junit.errorText().contains("/proc/self/junit.xml"));
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files), QStringList{"junit.xml"});
}

}  // namespace
