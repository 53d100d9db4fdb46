#include "platform/testresult/htmlreport.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "platform/testresult/htmlrun.h"
#include "platform/testresult/samplerun.h"
#include "support/files.h"
#include "support/golden.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

class HtmlReportTest : public testing::Test {
protected:
    /// Runs `add` with a report, finishes it and returns the page.
    template <typename Add>
    QString report(Add add) {
        HtmlReport html(folder);
        add(&html);
        html.finish();
        EXPECT_EQ(html.errorText(), QString());
        return QString::fromUtf8(readFile(folder + "/index.html"));
    }

    /// What stands between two marks of the page.
    static QString between(const QString& page, const QString& begin, const QString& end) {
        const int from = page.indexOf(begin) + begin.size();
        return page.mid(from, page.indexOf(end, from) - from);
    }

    static QJsonObject dataOf(const QString& page) {
        const QString text = between(page, "id=\"data\">\n", "</script>");
        EXPECT_FALSE(text.contains('<'));
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
        return document.object();
    }

    /// The "file" objects of a run that attaches the files.
    QList<QJsonObject> attached(const QStringList& paths) {
        const QString page = report([&paths](ReportGenerator* html) {
            TestResult result(html);
            result.startCase("c", "/c");
            for (const QString& path : paths)
                result.addAttachment(TestResult::FileAttachment, "", path, {});
        });
        QList<QJsonObject> files;
        const QJsonArray entries = dataOf(page)["entries"].toArray()[0].toArray();
        for (const QJsonValue& entry : entries)
            files += entry.toObject()["file"].toObject();
        return files;
    }

    QStringList copies() const {
        return QDir(folder + "/attachments").entryList(QDir::Files | QDir::Hidden);
    }

    QTemporaryDir directory;
    QString folder = directory.filePath("report");
};

TEST_F(HtmlReportTest, TellsARun) {
    QString page =
        report([this](ReportGenerator* html) { ASSERT_TRUE(addHtmlRun(html, directory.path())); });
    // The style and the script stand in files of their own.
    for (const auto& [begin, end] :
         {std::pair("<style>\n", "</style>"), std::pair("<script>\n", "</script>\n</body>")})
        page.replace(between(page, begin, end), "...\n");
    const Normaliser normalised = Normaliser()
                                      .path(directory.path(), "<DIR>")
                                      .pattern("attachments/[0-9a-f]{16}-", "attachments/<SUM>-");
    EXPECT_TRUE(compareWithGolden("testresult/index.html", normalised(page)));
}

TEST_F(HtmlReportTest, HoldsAnyTextWithoutHarm) {
    const QString page = report([](ReportGenerator* html) {
        TestResult result(html);
        result.startSuite("</title><script>a()</script>", "</style>");
        result.startCase("<b>&\"", "<!-- <script> ]]>");
        result.addResult(TestResult::Fail, "</script><script>a()</script>", "{{data}}",
                         LineInfo("<script>", 1));
        result.endSuite();
    });
    EXPECT_FALSE(page.contains("<script>a()"));
    EXPECT_EQ(between(page, "<title>", "</title>"),
              "&lt;/title&gt;&lt;script&gt;a()&lt;/script&gt;");
    EXPECT_TRUE(page.contains("<li>&lt;b&gt;&amp;&quot;: failed</li>"));
    const QJsonObject entry = dataOf(page)["entries"].toArray()[0].toArray()[0].toObject();
    EXPECT_EQ(entry["message"].toString(), "</script><script>a()</script>");
    EXPECT_EQ(entry["detail"].toString(), "{{data}}");

    std::mt19937 random(5);
    for (int run = 0; run < 100; ++run) {
        dataOf(report([&random](ReportGenerator* html) {
            for (int i = 0; i < 20; ++i)
                html->add({QDateTime(), randomEvent(random)});
        }));
    }
}

TEST_F(HtmlReportTest, TakesFilesAlongUnderSafeNames) {
    const QString strange = directory.filePath(QString::fromUtf8("a b/../x/ä \"<'.txt"));
    const QString pipe = directory.filePath("pipe");
    ASSERT_TRUE(writeFile(directory.filePath("x/a.txt"), "one"));
    ASSERT_TRUE(writeFile(directory.filePath("y/a.txt"), "two"));
    ASSERT_TRUE(writeFile(QDir::cleanPath(strange), "one"));
    ASSERT_EQ(::mkfifo(qPrintable(pipe), 0600), 0);
    const QString missing = directory.filePath("missing.txt");
    const QList<QJsonObject> files =
        attached({directory.filePath("x/a.txt"), directory.filePath("y/a.txt"),
                  QDir::cleanPath(strange), directory.filePath("x/a.txt"), missing, pipe, "", "/"});

    ASSERT_EQ(files.size(), 8);
    EXPECT_NE(files[0]["path"], files[1]["path"]);
    EXPECT_EQ(files[0]["path"], files[3]["path"]);
    EXPECT_TRUE(files[2]["path"].toString().endsWith("-_.txt"));
    EXPECT_EQ(files[1]["text"].toString(), "two");
    EXPECT_EQ(readFile(folder + '/' + files[1]["path"].toString()), "two");
    EXPECT_EQ(files[4]["problem"].toString(), QString("The file '%1' is missing.").arg(missing));
    EXPECT_EQ(files[5]["problem"].toString(),
              QString("The file '%1' could not be taken along: it is no regular file").arg(pipe));
    EXPECT_EQ(files[6]["problem"].toString(), "No file is named.");
    EXPECT_EQ(copies().size(), 3);
}

TEST_F(HtmlReportTest, ShowsTheEndOfALongText) {
    const QString path = directory.filePath("long-stdout.txt");
    ASSERT_TRUE(writeFile(path, QByteArray("line\r\n").repeated(20000) + "last"));
    const QJsonObject file = attached({path}).at(0);
    EXPECT_TRUE(file["text"].toString().startsWith("line\nline\n"));
    EXPECT_TRUE(file["text"].toString().endsWith("\nlast"));
    EXPECT_EQ(file["note"].toString(), "The last 63 KiB of 117 KiB.");
}

TEST_F(HtmlReportTest, ShowsVideosThatAreWanted) {
    const QString video = directory.filePath("shop_capture.mp4");
    ASSERT_TRUE(writeFile(video, "a video"));
    const QJsonObject data = dataOf(report([&](ReportGenerator* html) {
        FixedClock clock(html);
        TestResult result(&clock);
        result.startCase("kept", "/c");
        result.addStartVideo("V", video, {});
        result.addResult(TestResult::Fail, "f", "", LineInfo());
        result.addEndVideo("done", video, {});
        result.startCase("discarded", "/c");
        result.addStartVideo("V", directory.filePath("gone.mp4"), {});
        result.addDiscardedVideo("not failed", directory.filePath("gone.mp4"));
        // As a run leaves it that was killed.
        result.startCase("killed", "/c");
        result.addStartVideo("V", directory.filePath("missing.mp4"), {});
        result.setComplete();
    }));
    const QJsonArray rows = data["entries"].toArray();
    const QJsonObject kept = rows[0].toArray()[0].toObject();
    EXPECT_EQ(kept["kind"].toString(), "video");
    EXPECT_EQ(kept["until"].toInt() - kept["at"].toInt(), 1000);
    EXPECT_EQ(kept["file"].toObject()["kind"].toString(), "video");
    EXPECT_EQ(readFile(folder + '/' + kept["file"].toObject()["path"].toString()), "a video");
    EXPECT_EQ(rows[0].toArray().size(), 3);
    EXPECT_EQ(rows[1].toArray().size(), 0);
    const QJsonObject killed = rows[2].toArray()[0].toObject();
    EXPECT_FALSE(killed.contains("until"));
    EXPECT_TRUE(killed["file"].toObject()["problem"].toString().endsWith("is missing."));
}

TEST_F(HtmlReportTest, LeavesVeryManyActionsToTheJournal) {
    const QJsonObject data = dataOf(report([](ReportGenerator* html) {
        TestResult result(html);
        for (const char* name : {"first", "second"}) {
            result.startCase(name, "/c");
            for (int count = 0; count < 10003; ++count)
                result.addAction("click", "b", 1, false, LineInfo("/c", 1));
            result.addResult(TestResult::Fail, "last", "", LineInfo());
        }
    }));
    EXPECT_EQ(data["notes"].toArray()[1].toString(),
              "Actions that are not shown, only in the journal: 6");
    const QJsonArray second = data["entries"].toArray()[1].toArray();
    EXPECT_EQ(second.size(), 9998);
    EXPECT_EQ(second.last().toObject()["message"].toString(), "last");
}

TEST_F(HtmlReportTest, ReplacesAnEarlierReportAsAWhole) {
    ASSERT_TRUE(writeFile(directory.filePath("a.txt"), "one"));
    ASSERT_TRUE(writeFile(directory.filePath("b.txt"), "two"));
    attached({directory.filePath("a.txt")});
    const QByteArray earlier = readFile(folder + "/index.html");
    const QStringList earlierCopies = copies();
    EXPECT_EQ(earlierCopies.size(), 1);

    // A page that can't take its place leaves everything as it was.
    const auto addAll = [this](ReportGenerator* html) {
        TestResult result(html);
        result.startCase("c", "/c");
        for (const char* name : {"a.txt", "b.txt"})
            result.addAttachment(TestResult::FileAttachment, "", directory.filePath(name), {});
    };
    HtmlReport failing(folder);
    addAll(&failing);
    ASSERT_TRUE(QFile::rename(folder + "/index.html", folder + "/kept"));
    ASSERT_TRUE(QDir(folder).mkpath("index.html/x"));
    failing.finish();
    EXPECT_TRUE(failing.errorText().contains("index.html' can't be written: "))
        << failing.errorText().toStdString();
    EXPECT_EQ(copies(), earlierCopies);
    ASSERT_TRUE(QDir(folder + "/index.html").removeRecursively());
    ASSERT_TRUE(QFile::rename(folder + "/kept", folder + "/index.html"));
    EXPECT_EQ(readFile(folder + "/index.html"), earlier);

    // A new one takes the place of the earlier, and leaves the user's files alone.
    ASSERT_TRUE(writeFile(folder + "/attachments/mine.txt"));
    attached({directory.filePath("b.txt")});
    EXPECT_EQ(copies().size(), 2);
    EXPECT_FALSE(copies().contains(earlierCopies[0]));
    EXPECT_TRUE(copies().contains("mine.txt"));

    // Attachments that can't be written.
    ASSERT_TRUE(QDir(folder + "/attachments").removeRecursively());
    ASSERT_TRUE(writeFile(folder + "/attachments"));
    HtmlReport blocked(folder);
    addAll(&blocked);
    blocked.finish();
    EXPECT_TRUE(blocked.errorText().startsWith("The attachment '" + directory.filePath("a.txt")))
        << blocked.errorText().toStdString();
}

}  // namespace
