#include "platform/testresult/reportfactory.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/samplerun.h"
#include "platform/testresult/testresult.h"
#include "support/files.h"
#include "support/filesizelimit.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

TEST(ReportFactory, RefusesWhatItCannotMake) {
    QTemporaryDir directory;
    ASSERT_TRUE(writeFile(directory.filePath("f")));
    const QString blocked = directory.filePath("f/r");
    const QString known = "allure, console, cucumber-messages, html, json, junit, tap";
    const struct {
        QString text;
        QString error;
    } rows[] = {
        {"", "Unknown report format '' in ''; the known ones are " + known},
        {"htm:x", "Unknown report format 'htm' in 'htm:x'; the known ones are " + known},
        {"out.xml", "Unknown report format 'out.xml' in 'out.xml'; the known ones are " + known},
        {"json", "The report format 'json' needs a path: json:PATH"},
        {"junit:", "The report format 'junit' needs a path: junit:PATH"},
        {"junit:" + blocked,
         QString("The report '%1' can't be written: the directory '%2' could not "
                 "be created")
             .arg(blocked, directory.filePath("f"))},
        {"cucumber-messages",
         "The report format 'cucumber-messages' needs a path: cucumber-messages:PATH"},
        {"html:", "The report format 'html' needs a path: html:PATH"},
        {"html:" + blocked,
         QString("The report '%1/index.html' can't be written: the directory '%1' could not "
                 "be created")
             .arg(blocked)},
        {"json:/", "The report '/' can't be written: it is a directory"},
        {"console:/", "The report '/' can't be written: it is a directory"},
    };
    for (const auto& row : rows) {
        const auto report = createReportGenerator(row.text);
        ASSERT_FALSE(report) << row.text.toStdString();
        EXPECT_EQ(report.error().text, row.error);
    }
}

TEST(ReportFactory, MakesReportsThatAWorkingDirectoryDoesNotMove) {
    QTemporaryDir directory;
    const WorkingDirectory atStart(directory.path());
    CompositeReport all;
    for (const char* text :
         {"json:r/a:b.journal", "html:r/h", "junit:r/j.xml", "console:r/c.txt"}) {
        auto report = createReportGenerator(text);
        ASSERT_TRUE(report) << report.error().text.toStdString();
        all.append(*std::move(report));
    }
    const WorkingDirectory inCase("/");
    addSampleRun(&all);
    all.finish();
    EXPECT_EQ(all.errorText(), QString());
    EXPECT_TRUE(readFile(directory.filePath("r/a:b.journal")).startsWith("{\"format\""));
    EXPECT_TRUE(readFile(directory.filePath("r/j.xml")).contains("<testsuites"));
    EXPECT_TRUE(readFile(directory.filePath("r/h/index.html")).contains("suite_shop"));
    EXPECT_TRUE(readFile(directory.filePath("r/c.txt")).startsWith("Suite suite_shop\n"));
}

TEST(ReportFactory, NamesTheReasonWhenADiskBecomesFull) {
    QTemporaryDir directory;
    const QString attached = directory.filePath("attached.txt");
    ASSERT_TRUE(writeFile(attached, QByteArray(9000, 'x')));
    for (const char* format : {"json", "html", "junit", "console"}) {
        const QString path = directory.filePath(format);
        const auto created = createReportGenerator(QString(format) + ':' + path);
        ASSERT_TRUE(created);
        const std::unique_ptr<ReportGenerator>& report = *created;
        {
            const FileSizeLimit full(5000);
            TestResult result(report.get());
            result.startCase("c", "/c");
            for (int i = 0; i < 40; ++i)
                result.addResult(TestResult::Fail, QString(200, 'x'), "", LineInfo());
            result.addAttachment(TestResult::FileAttachment, "", attached, {});
            result.endCase();
            report->finish();
        }
        EXPECT_TRUE(report->errorText().endsWith(": File too large"))
            << format << ": " << report->errorText().toStdString();
        EXPECT_TRUE(report->errorText().contains(path)) << report->errorText().toStdString();
    }
    // What is written at the end leaves nothing behind.
    EXPECT_FALSE(QFile::exists(directory.filePath("junit")));
    EXPECT_TRUE(QDir(directory.filePath("html")).isEmpty());
}

TEST(CompositeReport, TellsFailuresWhenTheyHappenAndGoesOn) {
    class Failing : public ReportGenerator {
    public:
        explicit Failing(int good) : m_good(good) {}
        void add(const ReportEntry&) override { --m_good; }
        QString errorText() const override { return m_good < 0 ? "full" : QString(); }

    private:
        int m_good;
    };
    CompositeReport all;
    QStringList told;
    all.setErrorHandler([&told](const QString& error) { told += error; });
    QTemporaryDir directory;
    all.append(std::make_unique<Failing>(1));
    all.append(createReportGenerator("json:" + directory.filePath("j")).value());
    all.add({});
    EXPECT_EQ(told, QStringList());
    all.add({});
    EXPECT_EQ(told, QStringList{"full"});
    EXPECT_TRUE(QFile::remove(directory.filePath("j")));
    all.add({});
    all.finish();
    EXPECT_EQ(told.size(), 2);
    EXPECT_EQ(told.last(), QString("The journal '%1' could not be written: the file was removed or "
                                   "replaced; from now on nothing is recorded")
                               .arg(directory.filePath("j")));
}

TEST(CompositeReport, JoinsErrorsAndOpensVideos) {
    CompositeReport all;
    QTemporaryDir directory;
    QString error;
    const std::unique_ptr<QIODevice> video(all.openVideo(directory.filePath("v"), &error));
    EXPECT_NE(video, nullptr);

    for (const char* text : {"json:/dev/full", "junit:/dev/full/x", "console:-"})
        all.append(createReportGenerator(text).value_or(nullptr));
    EXPECT_EQ(all.openVideo("/nowhere/v", &error), nullptr);
    EXPECT_EQ(error, "Opening '/nowhere/v' for writing failed: No such file or directory");

    class Broken : public ReportGenerator {
    public:
        void add(const ReportEntry&) override {}
        QString errorText() const override { return "broken"; }
    };
    all.append(std::make_unique<Broken>());
    all.append(std::make_unique<Broken>());
    EXPECT_EQ(all.errorText(), "broken\nbroken");
}

}  // namespace
