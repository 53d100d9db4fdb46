#include "platform/testresult/longtext.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportfactory.h"
#include "platform/testresult/samplerun.h"
#include "support/files.h"
#include "support/recordingreport.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

TEST(LongText, ShowsBothEndsAndTellsWhatIsLeftOut) {
    const QString smile = QString::fromUtf8("\xf0\x9f\x98\x80");
    const struct {
        QString text;
        TextLimit limit;
        QString place;
        QString shown;
    } rows[] = {
        {"0123456789", 10, "f", "0123456789"},
        {"0123456789x", 10, "", "01234\n[... 1 characters left out]\n6789x"},
        {"0123456789x", 4, "a/b", "01\n[... 7 characters left out; the whole text: a/b]\n9x"},
        // At the ends of lines, where these are near.
        {"ab\ncdefghij\nk\nlmn", 8, "", "ab\n[... 11 characters left out]\nlmn"},
        // By lines, of which the last one may have no end.
        {"a\nb\nc\nd\n", {99, 4}, "", "a\nb\nc\nd\n"},
        {"a\nb\nc\nd\ne", {99, 4}, "", "a\nb\n[... 1 lines left out]\nd\ne"},
        {"a\nb\nc\nd\ne\nf\n",
         {99, 3},
         "x",
         "a\nb\n[... 3 lines left out; the whole text: x]\nf\n"},
        {"\n\n\n\n", {99, 2}, "", "\n[... 2 lines left out]\n\n"},
        // Few lines that are long are cut within.
        {"abcdefgh\nb\nc\nijklmnop", {8, 2}, "", "abcd\n[... 4 lines left out]\nmnop"},
        // Never half a character.
        {smile.repeated(9), 6, "", smile + "\n[... 14 characters left out]\n" + smile},
    };
    for (const auto& row : rows)
        EXPECT_EQ(limitedText(row.text, row.limit, row.place), row.shown);
}

class HugeTexts : public testing::Test {
protected:
    /// Two compared texts of five million characters each, an explanation and output as long.
    void report(const QString& description) {
        const auto created = createReportGenerator(description);
        ASSERT_TRUE(created) << created.error().text.toStdString();
        const std::unique_ptr<ReportGenerator>& generator = *created;
        TestResult result(generator.get());
        result.startSuite("s", "/s");
        result.startCase("c", "/c");
        result.addResult(QDateTime::currentDateTime(), TestResult::Fail, "Comparison", detail,
                         CallStack{}, "", -1, explanation);
        result.addResult(TestResult::Log, detail, "", LineInfo());
        result.addOutput(OutputStream::StandardOutput, output);
        result.endSuite();
        generator->finish();
        EXPECT_EQ(generator->errorText(), QString());
    }

    QString detail = "'begin" + QString(5000000, 'a') + "' and '" + QString(5000000, 'b') + "end'";
    QString explanation = "explained " + QString(10000000, 'e');
    QString output = QString("printed\n").repeated(1300000);
    QTemporaryDir directory;
};

TEST_F(HugeTexts, StayInTheFolderOfTheHtmlReport) {
    report("html:" + directory.filePath("html"));
    const QByteArray page = readFile(directory.filePath("html/index.html"));
    EXPECT_LT(page.size(), 1000000);
    const int begin = page.indexOf("id=\"data\">\n") + 11;
    const QJsonObject data =
        QJsonDocument::fromJson(page.mid(begin, page.indexOf("</script>", begin) - begin)).object();
    const QJsonArray entries = data["entries"].toArray()[0].toArray();
    const QJsonObject entry = entries[0].toObject();
    EXPECT_TRUE(entry["detail"].toString().startsWith("'begin"));
    EXPECT_TRUE(entry["detail"].toString().endsWith("end'"));
    EXPECT_TRUE(entry["detail"].toString().contains("characters left out; the whole text: "));
    const QJsonArray wholes = entry["wholes"].toArray();
    ASSERT_EQ(wholes.size(), 2);
    EXPECT_EQ(wholes[1].toObject()["name"].toString(), "explanation");
    EXPECT_EQ(QString::fromUtf8(
                  readFile(directory.filePath("html/" + wholes[0].toObject()["path"].toString()))),
              detail);
    // The message, and what the script printed.
    EXPECT_EQ(entries[1].toObject()["wholes"].toArray().size(), 1);
    EXPECT_EQ(entries[2].toObject()["wholes"].toArray().size(), 1);
}

TEST_F(HugeTexts, MakeNoXmlThatReadersRefuse) {
    const QString path = directory.filePath("junit.xml");
    report("junit:" + path);
    QProcess xmllint;
    xmllint.start(XMLLINT, {"--noout", "--nonet", path});
    ASSERT_TRUE(xmllint.waitForFinished());
    EXPECT_EQ(xmllint.exitCode(), 0) << xmllint.readAllStandardError().toStdString();
    EXPECT_LT(readFile(path).size(), 3000000);
    const QDir texts(path + "-texts");
    QStringList kinds;
    for (const QString& name : texts.entryList(QDir::Files)) {
        kinds += name.mid(17);
        EXPECT_TRUE(readFile(path).contains(
            QString("[[ATTACHMENT|%1]]").arg(texts.filePath(name)).toUtf8()));
    }
    kinds.sort();
    EXPECT_EQ(kinds.join(' '), "detail.txt explanation.txt system-out.txt");
    // Another report in the same place takes its texts away.
    explanation.clear();
    report("junit:" + path);
    EXPECT_EQ(texts.entryList(QDir::Files).size(), 2);
    detail = explanation = output = "short";
    report("junit:" + path);
    EXPECT_FALSE(texts.exists());
}

TEST_F(HugeTexts, AreShortOnTheConsoleAndWholeInTheJournal) {
    report("console:" + directory.filePath("console"));
    EXPECT_LT(readFile(directory.filePath("console")).replace("printed\n", "").size(), 40000);
    report("json:" + directory.filePath("journal"));
    RecordingReport recorded;
    JournalReader reader(&recorded);
    ASSERT_TRUE(reader.replay(directory.filePath("journal")));
    EXPECT_TRUE(recorded.results().at(0).detail == detail);
    EXPECT_TRUE(recorded.results().at(0).explanation == explanation);
}

}  // namespace
