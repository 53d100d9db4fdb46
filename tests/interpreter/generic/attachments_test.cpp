#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSet>
#include <QTemporaryDir>
#include <array>
#include <thread>
#include <vector>

#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/testfunctions.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"
#include "support/warningrecorder.h"

namespace Tamrix {
namespace {

using namespace Test;

class Attachments : public testing::Test {
protected:
    Attachments() {
        runner.casePath = folder.filePath("suite/tst_one/test.py");
        writeFile(runner.casePath, "x");
        writeFile(folder.filePath("data.tar.gz"), QByteArray(3 << 20, 'd'));
    }
    ~Attachments() override { Interpreter::setSelf(nullptr); }

    QString attach(const ScriptArgument::List& arguments) {
        context.call(testAttachFile, arguments);
        return context.errorMessage();
    }

    QTemporaryDir folder;
    FakeRunner runner;
    FakeInterpreter interpreter{&runner, Interpreter::Tcl};
    RecordingReport report;
    TestResult result{&report};
    FakeContext context{&result};
};

TEST_F(Attachments, GoBesideTheTestCase) {
    const QString source = folder.filePath("data.tar.gz");
    EXPECT_EQ(attach({text(source)}), "");
    EXPECT_EQ(attach({text(source), text("again")}), "");
    const auto files = report.all<FileAttached>();
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].path, folder.filePath("suite/attachments/data.tar.gz"));
    EXPECT_EQ(files[0].message, "Attached File");
    EXPECT_EQ(files[0].type, TestResult::FileAttachment);
    EXPECT_EQ(files[1].path, folder.filePath("suite/attachments/data_1.tar.gz"));
    EXPECT_EQ(files[1].message, "again");
    EXPECT_EQ(readFile(files[1].path), readFile(source));
}

TEST_F(Attachments, GoBelowTheResultDirectory) {
    runner.resultDirectory = folder.filePath("results");
    const WorkingDirectory inFolder(folder.path());
    ASSERT_TRUE(writeFile(folder.filePath("plain"), "x"));
    EXPECT_EQ(attach({text("plain")}), "");
    EXPECT_EQ(attach({text("plain")}), "");
    const auto files = report.all<FileAttached>();
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].path, folder.filePath("results/suite/tst_one/attachments/plain"));
    // The point behind a calculated name without suffix stays.
    EXPECT_EQ(files[1].path, folder.filePath("results/suite/tst_one/attachments/plain_1."));

    runner.resultDirectory = "relative";
    EXPECT_EQ(attach({text("plain")}),
              "Result directory 'relative' is not absolute, cannot attach files to the report");
    runner.resultDirectory = folder.filePath("none/below");
    EXPECT_EQ(attach({text("plain")}), "Result directory '" + runner.resultDirectory +
                                           "' could not be created, cannot attach files to the "
                                           "report");
}

TEST_F(Attachments, OfCasesThatRunAtTheSameTimeHaveNamesOfTheirOwn) {
    constexpr size_t workers = 8;
    constexpr size_t filesEach = 50;
    std::array<QStringList, workers> names;
    std::vector<std::thread> threads;
    threads.reserve(workers);
    for (QStringList& own : names) {
        threads.emplace_back([&own, path = folder.path()] {
            for (size_t i = 0; i < filesEach; ++i) {
                QFile file;
                if (createTargetFile(path, QFileInfo("image.png"), &file))
                    own.append(file.fileName());
            }
        });
    }
    QSet<QString> all;
    for (size_t i = 0; i < workers; ++i) {
        threads[i].join();
        all.unite(QSet<QString>(names[i].begin(), names[i].end()));
    }
    EXPECT_EQ(all.size(), static_cast<int>(workers * filesEach));
}

TEST_F(Attachments, RefuseWhatIsNoFile) {
    EXPECT_EQ(attach({}), "Expected at least one argument");
    EXPECT_EQ(attach({integer(1)}),
              "File path to attach to the report must be provided as string.");
    EXPECT_EQ(attach({text("")}), "File path to attach to the report must not be empty.");
    EXPECT_EQ(attach({text("a"), integer(1)}), "Message argument needs to be a string.");
    EXPECT_EQ(attach({text("/none")}),
              "Cannot attach non-existing file at '/none'. Specify an existing path instead.");
    EXPECT_EQ(attach({text(folder.path())}), "The specified path at '" + folder.path() +
                                                 "' is not a file, only files can be attached.");
    EXPECT_TRUE(report.entries.empty());
}

TEST_F(Attachments, FailedCopyLeavesNothing) {
    // A file of the system that can be opened and not be read.
    const QString error = attach({text("/proc/self/mem")});
    EXPECT_THAT(
        error.toStdString(),
        testing::StartsWith("Error copying file '/proc/self/mem' as attachment into report: "
                            "Reading from '/proc/self/mem' failed: "));
    EXPECT_FALSE(QFile::exists(folder.filePath("suite/attachments/mem")));
    EXPECT_TRUE(report.entries.empty());
}

TEST_F(Attachments, PicturesAreWrittenBesideTheTestCase) {
    interpreter.initNativeAPI();
    const SharedPtr<ScriptArgument> picture(new FakeArgument(SharedPtr<NativeScriptObject>(
        new ScreenshotScriptObject(QImage(3, 2, QImage::Format_RGB32), QPoint(), 1))));
    const char* const noText =
        "Informational message for the screenshot must be provided as string.";
    const struct {
        ScriptContext::Function function;
        ScriptArgument::List arguments;
        const char* error;
    } rows[] = {
        {testAttachImage, {}, "Expected at least one argument"},
        {testAttachImage, {picture, picture, picture}, "Expected at most two arguments"},
        {testAttachImage, {text("x")}, "The attachment argument must be an image"},
        {testAttachImage, {picture, integer(1)}, noText},
        {testAttachImage, {picture}, ""},
        {testAttachImage, {picture, text("again")}, ""},
        {testAttachDesktopScreenshot, {}, "Expected at least one argument"},
        {testAttachDesktopScreenshot, {picture}, noText},
        {testAttachDesktopScreenshot,
         {text("")},
         "Informational message for the screenshot must not be empty."},
        {testAttachDesktopScreenshot,
         {text("desk")},
         "Screenshot taken from the desktop is invalid"},
    };
    for (const auto& row : rows) {
        context.call(row.function, row.arguments);
        EXPECT_EQ(context.errorMessage(), row.error);
    }
    const auto files = report.all<FileAttached>();
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].path, folder.filePath("suite/attachments/image.png"));
    EXPECT_EQ(files[0].message, "Attached image");
    EXPECT_EQ(files[0].type, TestResult::ImageAttachment);
    EXPECT_EQ(files[1].path, folder.filePath("suite/attachments/image_1.png"));
    EXPECT_EQ(files[1].message, "again");
    EXPECT_EQ(QImage(files[1].path).size(), QSize(3, 2));
}

TEST_F(Attachments, NeedARunner) {
    Interpreter::setSelf(nullptr);
    WarningRecorder warnings;
    EXPECT_EQ(attach({text(folder.filePath("data.tar.gz"))}), "");
    EXPECT_EQ(warnings.messages(), QStringList("Without Runner interface no attachFile()"));
    EXPECT_FALSE(context.result);
}

}  // namespace
}  // namespace Tamrix
