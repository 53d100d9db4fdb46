#include "platform/testresult/testvp.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/warningrecorder.h"

using namespace Tamrix;

namespace {

TEST(TestVP, WantsAScreenshotByFlag) {
    using O = VerificationOptions;
    const struct {
        TestResult::ResultType type;
        int flag;
    } rows[] = {
        {TestResult::Pass, O::LogScreenshotOnPass},
        {TestResult::ExpectedFail, O::LogScreenshotOnPass},
        {TestResult::Fail, O::LogScreenshotOnFail},
        {TestResult::UnexpectedPass, O::LogScreenshotOnFail},
        {TestResult::Warning, O::LogScreenshotOnWarning},
        {TestResult::Error, O::LogScreenshotOnError},
        {TestResult::Fatal, O::LogScreenshotOnError},
        {TestResult::Log, 0},
        {TestResult::Skipped, 0},
        {TestResult::SectionStart, 0},
    };
    for (const auto& row : rows) {
        for (int flag = 1; flag <= O::ThrowOnFailure; flag *= 2) {
            VerificationOptions options;
            options.setFlag(O::Flag(flag), true);
            EXPECT_EQ(TestVP::wantLogScreenshotForResult(options, row.type), flag == row.flag)
                << row.type << " " << flag;
        }
    }
}

class LogScreenshotTest : public testing::Test {
protected:
    LogScreenshotTest() {
        TestVP::setScreenshotServices(
            {[this](RunnerInterface*) { return desktop; },
             [this](RunnerInterface*) { return folder; },
             [this](RunnerInterface*, const QString& place) { moments += place; }});
    }
    ~LogScreenshotTest() override { TestVP::setScreenshotServices({}); }

    static QImage picture(int width) {
        QImage image(width, 2, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    }

    QTemporaryDir directory;
    QString folder = directory.filePath("pictures/tst");
    QImage desktop = picture(5);
    /// The folders of moments that were to be kept.
    QStringList moments;
    /// No operation of it is called here.
    RunnerInterface* runner = reinterpret_cast<RunnerInterface*>(this);
    Tamrix::Test::WarningRecorder warnings;
};

TEST_F(LogScreenshotTest, StoresPicturesUnderNewNames) {
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::Fail, picture(3)),
              QString(" (Screenshot in '%1/screenshot_fail_1.png')").arg(folder));
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::Fail, QImage()),
              QString(" (Screenshot in '%1/screenshot_fail_2.png')").arg(folder));
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::UnexpectedPass, QImage()),
              QString(" (Screenshot in '%1/screenshot_unexpectedpass_1.png')").arg(folder));
    EXPECT_EQ(QImage(folder + "/screenshot_fail_1.png").width(), 3);
    EXPECT_EQ(QImage(folder + "/screenshot_fail_2.png").width(), 5);
    EXPECT_TRUE(warnings.messages().isEmpty());
}

TEST_F(LogScreenshotTest, KeepsTheMomentOfFailuresOnly) {
    for (const TestResult::ResultType type :
         {TestResult::Pass, TestResult::Warning, TestResult::ExpectedFail})
        TestVP::logScreenshot(runner, type, QImage());
    EXPECT_EQ(moments, QStringList());
    for (const TestResult::ResultType type :
         {TestResult::Fail, TestResult::Error, TestResult::Fatal, TestResult::UnexpectedPass})
        TestVP::logScreenshot(runner, type, QImage());
    EXPECT_EQ(moments, QStringList({folder, folder, folder, folder}));
}

TEST_F(LogScreenshotTest, GivesNoTextWhenNothingIsStored) {
    EXPECT_EQ(TestVP::logScreenshot(nullptr, TestResult::Fail, picture(3)), QString());
    EXPECT_TRUE(warnings.messages().isEmpty());

    desktop = QImage();
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::Fail, QImage()), QString());
    folder = "/proc/nowhere";
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::Fail, picture(3)), QString());
    EXPECT_EQ(warnings.messages().size(), 2);
    EXPECT_TRUE(warnings.messages().last().contains("/proc/nowhere"));
    folder = "/proc";
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::Fail, picture(3)), QString());
    EXPECT_TRUE(warnings.messages().last().contains("/proc/screenshot_fail_1.png"));
    folder.clear();
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::Fail, picture(3)), QString());
    TestVP::setScreenshotServices({});
    EXPECT_EQ(TestVP::logScreenshot(runner, TestResult::Fail, picture(3)), QString());
}

}  // namespace
