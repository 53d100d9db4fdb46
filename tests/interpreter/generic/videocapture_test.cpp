#include "interpreter/generic/videocapture.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QPointer>
#include <QTemporaryDir>

#include "interpreter/generic/apitest.h"
#include "runner/coreapplication.h"
#include "support/files.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;

/// A recording that says how it ends.
class FakeVideo : public BackgroundTask {
public:
    explicit FakeVideo(QIODevice* device) : m_device(device) {}
    VoidResult stop(QString message, CallStack stack) override {
        Q_EMIT stopped(status, message, stack);
        return status;
    }

    VoidResult status;

private:
    std::unique_ptr<QIODevice> m_device;
};

class VideoCaptureTest : public ApiTest {
protected:
    VideoCaptureTest() {
        interpreter.initNativeAPI();
        runner.casePath = folder.filePath("suite/tst_one/test.py");
        runner.result = &result;
        runner.currentContext = application;
        application->name = "shop";
        application->valid = true;
        runner.onVideoCapture = [this](QIODevice* device) {
            video = QSharedPointer<FakeVideo>::create(device);
            return video;
        };
    }

    /// Calls a member of a VideoCapture.
    QString callMember(const QString& name, const ScriptArgument::List& arguments = {}) {
        const auto method = VideoCaptureScriptObject::type().methods().value(name);
        context.setArguments(arguments);
        const bool isGood = context.execute(method.function, object);
        EXPECT_EQ(isGood, !context.hasError());
        return context.errorMessage();
    }

    /// Constructs a VideoCapture; its error.
    QString construct(const ScriptArgument::List& arguments) {
        context.setArguments(arguments);
        object = context.execute(VideoCaptureScriptObject::type().constructor());
        EXPECT_EQ(!object, context.hasError());
        return context.errorMessage();
    }

    QString attachment(const QString& name) const {
        return folder.filePath("suite/attachments/" + name);
    }

    QTemporaryDir folder;
    RecordingReport report;
    TestResult result{&report};
    FakeContext context{&result};
    SharedPtr<ApplicationContext> application{new ApplicationContext};
    QSharedPointer<FakeVideo> video;
    SharedPtr<NativeScriptObject> object;
};

TEST_F(VideoCaptureTest, OfTheResultsIsToldAtBothEnds) {
    context.call(testStartVideoCapture, {});
    ASSERT_EQ(context.errorMessage(), "");
    object = context.result->toNative(VideoCaptureScriptObject::staticTypeId());
    ASSERT_TRUE(object);
    EXPECT_EQ(application->videoCapture, video);
    context.call(testStopVideoCapture, {text("that's all")});
    EXPECT_EQ(context.errorMessage(), "");
    EXPECT_FALSE(application->videoCapture);

    EXPECT_EQ(report.kinds(), (QStringList{"videoStart", "videoEnd"}));
    const QString path = attachment("shop_capture.mp4");
    const VideoStarted start = report.all<VideoStarted>().at(0);
    EXPECT_EQ(start.message, "Video Attachment for AUT: shop");
    EXPECT_EQ(start.path, path);
    EXPECT_EQ(start.callStack.size(), 1u);
    const VideoEnded end = report.all<VideoEnded>().at(0);
    EXPECT_EQ(end.message, "that's all");
    EXPECT_EQ(end.path, path);
    EXPECT_TRUE(QFile::exists(path));

    context.call(testStopVideoCapture, {});
    EXPECT_EQ(context.errorMessage(), "No active screen capture found for the application context");
    // The next one has a name of its own, and what a script gives as message counts.
    context.call(testStartVideoCapture, {text("again")});
    EXPECT_EQ(callMember("stop"), "") << "of the first one";
    EXPECT_EQ(report.all<VideoStarted>().at(1).message, "again");
    EXPECT_EQ(report.all<VideoStarted>().at(1).path, attachment("shop_capture_1.mp4"));
}

TEST_F(VideoCaptureTest, FailuresAreToldInstead) {
    context.call(testStartVideoCapture, {});
    video->status = VoidResult::error("the disk is full");
    context.call(testStopVideoCapture, {text("dropped")});
    EXPECT_EQ(context.errorMessage(), "the disk is full");
    EXPECT_EQ(report.all<VideoEnded>().at(0).message, "Video capture failed: the disk is full");
    context.call(testStopVideoCapture, {});
    EXPECT_EQ(context.errorMessage(), "No active screen capture found for the application context");

    runner.onVideoCapture = nullptr;
    report.entries.clear();
    context.call(testStartVideoCapture, {});
    EXPECT_EQ(context.errorMessage(), "no recorder");
    EXPECT_FALSE(QFile::exists(attachment("shop_capture_1.mp4"))) << "an empty file is left";
    EXPECT_TRUE(report.entries.empty());
    EXPECT_EQ(construct({text(folder.filePath("own.mp4"))}), "no recorder");
    QFile device(folder.filePath("device.mp4"));
    ASSERT_TRUE(device.open(QIODevice::WriteOnly));
    try {
        const VideoCaptureScriptObject refused(&device, application);
        ADD_FAILURE() << "it was made";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Video capture initalization failed: no recorder");
    }
}

TEST_F(VideoCaptureTest, AfterTheResultNothingIsTold) {
    coreApplication();
    context.call(testStartVideoCapture, {});
    const QPointer<QObject> completer = video->property("completer").value<QObject*>();
    ASSERT_TRUE(completer);
    EXPECT_EQ(completer->parent(), video.data());
    result.setComplete();
    video->stop("late", {});
    EXPECT_EQ(report.kinds(), QStringList("videoStart"));
    QCoreApplication::sendPostedEvents(completer, QEvent::DeferredDelete);
    EXPECT_FALSE(completer);
}

TEST_F(VideoCaptureTest, ARunThatRecordsByItselfSkipsThem) {
    runner.recordsVideo = true;
    context.call(testStartVideoCapture, {});
    context.call(testStopVideoCapture, {});
    EXPECT_EQ(context.errorMessage(), "");
    EXPECT_EQ(context.result->toString(), context.createNull()->toString());
    const auto results = report.results();
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results[0].type, TestResult::Log);
    EXPECT_EQ(results[0].message,
              "Video capture is globally enabled, skipping request for starting capture");
    EXPECT_EQ(results[1].message,
              "Video capture is globally enabled, skipping request for ending capture");
    EXPECT_FALSE(video);
    // The run itself.
    ScriptContext::setCurrent(&context);
    EXPECT_EQ(startVideoCapture(application, &interpreter), "");
    EXPECT_TRUE(video);
    FakeContext withoutResult;
    ScriptContext::setCurrent(&withoutResult);
    EXPECT_EQ(startVideoCapture(application, &interpreter),
              "Missing test result for logging. 'tamrixtest' users should call "
              "tamrixtest.setTestResult(format, file) first.");
}

TEST_F(VideoCaptureTest, OfAScriptGoesToItsOwnFile) {
    const QString path = folder.filePath("own.mp4");
    EXPECT_EQ(construct({text(path)}), "");
    EXPECT_TRUE(QFile::exists(path));
    for (const char* const name : {"pause", "resume", "stop"}) {
        EXPECT_EQ(callMember(name, {integer(1)}),
                  QString("VideoCapture.%1() takes no arguments").arg(name));
        EXPECT_EQ(callMember(name), "");
    }
    EXPECT_TRUE(report.entries.empty());
    video->status = VoidResult::error("it died");
    EXPECT_EQ(callMember("stop"), "it died");

    EXPECT_EQ(construct({}), "The VideoCapture() constructor requires filename argument");
    EXPECT_EQ(construct({text(path), text("no context")}),
              "Second argument to VideoCapture() must be a valid application context");
    EXPECT_EQ(construct({text("/none/a.mp4")}),
              "Failed opening '/none/a.mp4': No such file or directory");
    application->valid = false;
    EXPECT_EQ(construct({text(path)}), "Current ApplicationContext is not valid");
}

TEST_F(VideoCaptureTest, RefusesWhatCanNotBe) {
    for (const auto function : {testStartVideoCapture, testStopVideoCapture}) {
        context.call(function, {text("a"), text("b")});
        EXPECT_EQ(context.errorMessage(), "Expected at most one argument");
        runner.currentContext = nullptr;
        context.call(function, {});
        EXPECT_EQ(context.errorMessage(), "The application context is not valid");
        runner.currentContext = application;
    }
    TestResult unheard{nullptr};
    EXPECT_EQ(startVideoCaptureInternal(application, "m", {}, &runner, &unheard).errorText(),
              "No report generator available");
}

}  // namespace
}  // namespace Tamrix
