#include "platform/testresult/reportfactory.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/samplerun.h"
#include "platform/testresult/testresult.h"
#include "support/files.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

TEST(ReportFactory, RefusesWhatItCannotMake) {
    QTemporaryDir directory;
    ASSERT_TRUE(writeFile(directory.filePath("f")));
    const QString blocked = directory.filePath("f/r");
    const struct {
        QString text;
        QString error;
    } rows[] = {
        {"", "Unknown report format '' in ''; the known ones are console, html, json, junit"},
        {"htm:x",
         "Unknown report format 'htm' in 'htm:x'; the known ones are console, html, json, junit"},
        {"out.xml",
         "Unknown report format 'out.xml' in 'out.xml'; the known ones are console, html, json, "
         "junit"},
        {"json", "The report format 'json' needs a path: json:PATH"},
        {"junit:", "The report format 'junit' needs a path: junit:PATH"},
        {"junit:" + blocked,
         QString("The report '%1' can't be written: the directory '%2' could not "
                 "be created")
             .arg(blocked, directory.filePath("f"))},
        {"html:", "The report format 'html' needs a path: html:PATH"},
        {"html:" + blocked,
         QString("The report '%1/index.html' can't be written: the directory '%1' could not "
                 "be created")
             .arg(blocked)},
        {"json:/", "The report '/' can't be written: it is a directory"},
        {"console:/", "The report '/' can't be written: it is a directory"},
    };
    for (const auto& row : rows) {
        QString error;
        EXPECT_EQ(createReportGenerator(row.text, &error), nullptr) << row.text.toStdString();
        EXPECT_EQ(error, row.error);
    }
}

TEST(ReportFactory, MakesReportsThatAWorkingDirectoryDoesNotMove) {
    QTemporaryDir directory;
    const WorkingDirectory atStart(directory.path());
    CompositeReport all;
    for (const char* text :
         {"json:r/a:b.journal", "html:r/h", "junit:r/j.xml", "console:r/c.txt"}) {
        QString error;
        all.append(createReportGenerator(text, &error));
        EXPECT_EQ(error, QString());
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

TEST(CompositeReport, JoinsErrorsAndOpensVideos) {
    CompositeReport all;
    QTemporaryDir directory;
    QString error;
    const std::unique_ptr<QIODevice> video(all.openVideo(directory.filePath("v"), &error));
    EXPECT_NE(video, nullptr);

    for (const char* text : {"json:/dev/full", "junit:/dev/full/x", "console:-"})
        all.append(createReportGenerator(text, &error));
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
