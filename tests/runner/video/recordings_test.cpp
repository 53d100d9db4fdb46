// What can happen to a recorder, with a shell script in its place.

#include "runner/video/recordings.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "runner/coreapplication.h"
#include "runner/processes/markedprocesses.h"
#include "runner/services/runner.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/inmemorymodel.h"
#include "support/outcomes.h"
#include "support/printqt.h"
#include "support/processes.h"
#include "support/recordingreport.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

/// An application that shows its windows somewhere.
class ShownModel : public InMemoryModel {
public:
    ApplicationFacts facts() const override {
        ApplicationFacts facts = InMemoryModel::facts();
        facts.platform = platform;
        return facts;
    }
    Outcome<QString> environmentVariable(const QString& name) override {
        return name == "DISPLAY" ? display : QString();
    }

    QString platform = "xcb";
    QString display = ":77";
};

class RecordingsTest : public testing::Test {
protected:
    RecordingsTest() {
        Tamrix::Test::coreApplication();
        auto own = std::make_unique<ShownModel>();
        model = own.get();
        application = runner.applications.add(std::move(own), "shop");
        runner.facts.testResult = &result;
        runner.facts.scriptPath = "/suite/tst/test.py";
        useRecorder("printf head; trap 'printf tail; exit 255' TERM; while :; do sleep 0.02; done");
    }

    /// Puts a program "ffmpeg" in front of all others.
    void useRecorder(const QByteArray& script) {
        const QString path = folder.filePath("bin/ffmpeg");
        ASSERT_TRUE(Tamrix::Test::writeFile(path, "#!/bin/sh\n" + script + "\n"));
        ASSERT_TRUE(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    /// Starts a recording; the text of its failure.
    QString start() {
        auto file = std::make_unique<QFile>(path);
        EXPECT_TRUE(file->open(QIODevice::WriteOnly));
        const auto started = runner.startVideoCapture(application, file.get());
        if (!started.ok())
            return started.errorText();
        // It is the recording's now.
        static_cast<void>(file.release());
        task = started.value();
        return {};
    }

    QTemporaryDir folder;
    QString path = folder.filePath("a.mp4");
    const Tamrix::Test::EnvironmentGuard searchPath{"PATH",
                                                    folder.filePath("bin") + ":/usr/bin:/bin"};
    /// The run's watch.
    const Tamrix::Test::EnvironmentGuard prefix{"TAMRIX_PREFIX", TAMRIX_TEST_PREFIX};
    Tamrix::Test::RecordingReport report;
    TestResult result{&report};
    Runner runner;
    ShownModel* model;
    SharedPtr<Application> application;
    QSharedPointer<BackgroundTask> task;
};

TEST_F(RecordingsTest, WriteToTheFileUntilTheyAreStopped) {
    useRecorder(
        "printf '%s %s|' \"$DISPLAY\" \"$*\"; trap 'printf tail; exit 255' TERM; "
        "while :; do sleep 0.02; done");
    ASSERT_EQ(start(), "");
    EXPECT_EQ(application->videoCapture, task);
    QStringList ends;
    QObject::connect(
        task.data(), &BackgroundTask::stopped,
        [&](const VoidResult& status, const QString& message, const CallStack& stack) {
            ends.append(QString("%1|%2|%3")
                            .arg(status.errorText(), message, QString::number(stack.size())));
        });
    const QByteArray begin = Tamrix::Test::readFile(path);
    EXPECT_TRUE(begin.startsWith(":77 ")) << begin.constData();
    EXPECT_TRUE(begin.contains(" -i :77 ")) << begin.constData();
    EXPECT_EQ(task->stop("enough", {LineInfo("/t.py", 3)}).errorText(), "");
    EXPECT_TRUE(Tamrix::Test::readFile(path).endsWith("|tail"));
    EXPECT_TRUE(begin.contains(" -draw_mouse 0 ")) << begin.constData();
    EXPECT_EQ(task->stop("again", {}).errorText(), "");
    EXPECT_EQ(ends, QStringList("|enough|1"));
    // Without an agent the pointer is what clicks.
    model->platform = "display :77";
    ASSERT_EQ(start(), "");
    EXPECT_TRUE(Tamrix::Test::readFile(path).contains(" -draw_mouse 1 "));
    EXPECT_EQ(report.kinds(), QStringList());
}

TEST_F(RecordingsTest, TellWhyTheyCanNotBegin) {
    const struct {
        const char* platform;
        const char* display;
        const char* recorder;
        QString error;
    } rows[] = {
        {"offscreen", ":77", "",
         "a video can be made of an X display only, and the application 'shop' shows its windows "
         "on 'offscreen'"},
        {"wayland", ":77", "",
         "a video can be made of an X display only, and the application 'shop' shows its windows "
         "on 'wayland'"},
        {"xcb", "", "", "the display of the application 'shop' is not known"},
        {"xcb", ":77", "echo 'Cannot open display :77' >&2; exit 1",
         "ffmpeg has ended: it exited with code 1: Cannot open display :77"},
        {"xcb", ":77", "exit 0", "ffmpeg has ended: it exited with code 0"},
    };
    for (const auto& row : rows) {
        model->platform = row.platform;
        model->display = row.display;
        useRecorder(row.recorder);
        EXPECT_EQ(start(), row.error);
        EXPECT_FALSE(application->videoCapture);
    }
    {
        const Tamrix::Test::EnvironmentGuard nowhere("PATH", folder.filePath("none"));
        EXPECT_EQ(start(),
                  "videos need the program 'ffmpeg', which is not in PATH (Debian package ffmpeg)");
    }
    model->close("the line is dead");
    EXPECT_EQ(start(), "The application 'shop' has ended");
}

TEST_F(RecordingsTest, TellWhenTheyEndByThemselves) {
    const QByteArray end = folder.filePath("end").toLocal8Bit();
    const QByteArray untilEnd = "printf head; while [ ! -e " + end + " ]; do sleep 0.02; done; ";
    useRecorder(untilEnd + "echo 'No space left on device' >&2; exit 1");
    ASSERT_EQ(start(), "");
    ASSERT_TRUE(Tamrix::Test::writeFile(end));
    const QString error = "ffmpeg has ended: it exited with code 1: No space left on device";
    QDeadlineTimer deadline(100'000);
    while (report.entries.empty() && !deadline.hasExpired())
        runner.snooze(0.05);
    ASSERT_EQ(report.results().size(), 1u);
    EXPECT_EQ(report.results()[0].type, TestResult::Warning);
    EXPECT_EQ(report.results()[0].message, "A video has ended before its time");
    EXPECT_EQ(report.results()[0].detail, error);
    EXPECT_EQ(task->stop("late", {}).errorText(), error);
    runner.snooze(0.2);
    EXPECT_EQ(report.results().size(), 1u) << "told once";
    // Also when the one who stops it is the first to see it.
    ASSERT_TRUE(QFile::remove(end));
    const QString pid = folder.filePath("pid");
    useRecorder("echo $$ > " + pid.toLocal8Bit() + "; " + untilEnd +
                "echo 'the display is gone' >&2; exit 0");
    ASSERT_EQ(start(), "");
    ASSERT_TRUE(Tamrix::Test::writeFile(end));
    ASSERT_TRUE(Tamrix::Test::waitUntil(
        [&] { return !Tamrix::Test::isRunning(Tamrix::Test::readFile(pid).trimmed().toInt()); }));
    EXPECT_EQ(task->stop("late", {}).errorText(),
              "ffmpeg has ended: it exited with code 0: the display is gone");
}

TEST_F(RecordingsTest, StopIsBounded) {
    useRecorder("trap '' TERM; printf head; while :; do sleep 0.02; done");
    ASSERT_EQ(start(), "");
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(task->stop("enough", {}).errorText(),
              "ffmpeg did not finish the video within 5000 ms and was killed");
    EXPECT_LT(timer.elapsed(), 30000);
    EXPECT_EQ(Tamrix::Test::readFile(path), "head") << "what there is stays";
}

TEST_F(RecordingsTest, NothingOutlivesItsTask) {
    ASSERT_EQ(start(), "");
    const Outcome<QString> mark = runner.applications.helperMark();
    ASSERT_EQ(Tamrix::Test::errorOf(mark), "");
    const auto left = [&] { return findProcesses({mark->toStdString(), true, -1}).size(); };
    EXPECT_GE(left(), 1u);
    runner.recordings.takeRunning();
    application->videoCapture.clear();
    task.clear();
    // Its "sleep" ends by itself.
    EXPECT_TRUE(Tamrix::Test::waitUntil([&] { return left() == 0; }));
}

}  // namespace
}  // namespace Tamrix
