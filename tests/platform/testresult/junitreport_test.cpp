#include "platform/testresult/junitreport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include "platform/testresult/resulttext.h"
#include "platform/testresult/samplerun.h"
#include "support/files.h"
#include "support/golden.h"

using namespace Tamrix;
using namespace Tamrix::Test;

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
        return readFile(path);
    }

    /// What the schema has against the file; empty when nothing.
    std::string schemaErrors() const {
        const QString schema = TAMRIX_TEST_SOURCE_DIR "/tests/platform/testresult/junit.xsd";
        QProcess process;
        process.start(XMLLINT, {"--noout", "--nonet", "--schema", schema, path});
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
    EXPECT_TRUE(compareWithGolden("testresult/junit.xml", QString::fromUtf8(xml)));
}

TEST_F(JUnitReportTest, TellsShardAndAttempts) {
    const QByteArray xml = report(addRepeatedRun);
    EXPECT_EQ(schemaErrors(), "");
    EXPECT_TRUE(compareWithGolden("testresult/junit-attempts.xml", QString::fromUtf8(xml)));
}

TEST_F(JUnitReportTest, NamesEachVideoThatIsThere) {
    const QByteArray xml = report([](ReportGenerator* junit) {
        TestResult result(junit);
        result.startCase("kept", "/c");
        result.addStartVideo("V", "/r/kept.mp4", {});
        result.addEndVideo("done", "/r/kept.mp4", {});
        result.startCase("discarded", "/c");
        result.addStartVideo("V", "/r/discarded.mp4", {});
        result.addDiscardedVideo("not failed", "/r/discarded.mp4");
        result.startCase("killed", "/c");
        result.addStartVideo("V", "/r/killed.mp4", {});
        result.setComplete();
    });
    EXPECT_EQ(elementTexts(xml, "system-out"),
              (QStringList{"[[ATTACHMENT|/r/kept.mp4]]\n", "[[ATTACHMENT|/r/killed.mp4]]\n"}));
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
            result.addOutput(OutputStream::StandardOutput, row.text);
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
            for (int i = 0; i < 20; ++i)
                junit->add({QDateTime(), randomEvent(random)});
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
