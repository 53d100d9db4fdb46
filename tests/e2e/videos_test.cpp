// Videos of runs, made of a real display.

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <csignal>

#include "e2e/applicationrun.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Tamrix::Test::ApplicationRun;
using Tamrix::Test::RunnerProcess;

class Videos : public ApplicationRun {
protected:
    /// Seconds, as an independent program reads them; -1 for what is no video.
    static double durationOf(const QString& path) {
        QProcess probe;
        probe.start("ffprobe", {"-v", "error", "-show_entries", "format=duration", "-of",
                                "default=noprint_wrappers=1:nokey=1", path});
        EXPECT_TRUE(probe.waitForFinished(60000));
        bool isNumber = false;
        const double seconds = probe.readAllStandardOutput().trimmed().toDouble(&isNumber);
        return isNumber ? seconds : -1;
    }

    QString video(const QString& testCase) const {
        return suite.path("results/suite/" + testCase + "/attachments/faulty_capture.mp4");
    }

    /// A case in which `recorded(seconds)` waits until the video of the application shows as much.
    void addRecordedCase(const QString& name, const QByteArray& script) {
        addCase(name, R"py(import subprocess
def duration(path):
    try:
        return float(subprocess.check_output(
            ['ffprobe', '-v', 'error', '-show_entries', 'format=duration', '-of',
             'default=noprint_wrappers=1:nokey=1', path], stderr=subprocess.DEVNULL))
    except (subprocess.CalledProcessError, ValueError):
        return 0  # not yet a video

def recorded(seconds, path=r')py" +
                          video(name).toUtf8() +
                          R"py('):
    if not waitFor(lambda: os.path.exists(path) and duration(path) > seconds, 100000):
        test.fatal('no video')

)py" + script);
    }

    void run(const QStringList& options) {
        runner.run(QStringList{"run", suite.path("suite"), "--result-dir", suite.path("results")} +
                   options);
    }
};

TEST_F(Videos, OfFailedCasesStay) {
    addRecordedCase("a",
                    "def main():\n    startApplication('faulty')\n    recorded(1)\n"
                    "    test.fail('wrong')\n    snooze(0.5)\n");
    addCase("b", "def main():\n    startApplication('faulty')\n    test.log('right')\n");
    addCase("c",
            "def main():\n    startApplication('faulty')\n    os.kill(os.getppid(), 0)\n"
            "    startApplication('faulty')\n    raise ValueError('c')\n");
    run({"--aut-display", "auto", "--video", "on-failure", "--report",
         "html:" + suite.path("html")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    EXPECT_EQ(runner.errors(), "");
    EXPECT_GT(durationOf(video("a")), 1.0);
    EXPECT_GT(durationOf(video("c")), 0.0);
    EXPECT_FALSE(QFile::exists(suite.path("results/suite/b/attachments")));
    EXPECT_TRUE(resultsOf("a").contains("Video capture stopped at the end of the test case"));
    EXPECT_TRUE(resultsOf("b").contains("\"discarded\""));
    const QString page = QString::fromUtf8(Tamrix::Test::readFile(suite.path("html/index.html")));
    EXPECT_EQ(page.count("\"kind\":\"video\",\"label\""), 2) << qPrintable(page);
}

TEST_F(Videos, OfAScriptGoWhereItWants) {
    addRecordedCase("a", R"(def main():
    startApplication('faulty')
    own = VideoCapture('own.mp4')
    video = test.startVideoCapture('mine')
    recorded(0.3)
    recorded(0.3, 'own.mp4')
    own.pause()
    own.stop()
    test.log('own', str(os.path.getsize('own.mp4') > 0))
    test.stopVideoCapture()
    try:
        test.stopVideoCapture()
    except Exception as error:
        test.log('second', str(error))
    test.startVideoCapture()
)");
    run({"--aut-display", "auto"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
    const QString results = resultsOf("a");
    for (const char* const text :
         {"\"detail\" : \"True\"", "No active screen capture found", "Video Capture Stopped",
          "faulty_capture_1.mp4", "Video capture stopped at the end of the test case"})
        EXPECT_TRUE(results.contains(text)) << text << ": " << qPrintable(results);
    EXPECT_GT(durationOf(suite.path("suite/a/own.mp4")), 0.3);
    EXPECT_GT(durationOf(video("a")), 0.3);
}

TEST_F(Videos, OfAKilledRunPlay) {
    addRecordedCase("a",
                    "def main():\n    startApplication('faulty')\n    recorded(1)\n"
                    "    print('now', flush=True)\n    snooze(600)\n");
    runner.start({"run", suite.path("suite"), "--result-dir", suite.path("results"),
                  "--aut-display", "auto", "--video", "on"});
    ASSERT_TRUE(runner.waitForOutput("now"));
    runner.sendSignal(SIGKILL);
    runner.finish();
    // The watch ends what the run has left.
    EXPECT_TRUE(Tamrix::Test::waitUntil([&] { return leftProcesses().isEmpty(); }));
    EXPECT_GT(durationOf(video("a")), 1.0);
    // The report that is made of the journal shows it.
    RunnerProcess report;
    report.run({"report", suite.path("results/journal.jsonl"), "--to", "html:" + suite.path("html"),
                "--to", "junit:" + suite.path("junit.xml")});
    EXPECT_TRUE(
        Tamrix::Test::readFile(suite.path("html/index.html")).contains("faulty_capture.mp4"));
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("junit.xml")).contains("faulty_capture.mp4]]"));
}

TEST_F(Videos, ThatCanNotBeMadeAreTold) {
    addCase("a", "def main():\n    startApplication('faulty')\n    test.log('goes on')\n");
    run({"--video", "on"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
    const QString results = resultsOf("a");
    EXPECT_TRUE(results.contains("No video of this test case")) << qPrintable(results);
    EXPECT_TRUE(results.contains("the application 'faulty' shows its windows on 'offscreen'"))
        << qPrintable(results);
    // Before anything runs.
    RunnerProcess without;
    prepare(without);
    without.setVariable("PATH", "/none");
    without.run({"run", suite.path("suite"), "--video", "on"});
    EXPECT_EQ(without.exitCode(), 2);
    EXPECT_EQ(without.errors(),
              "tamrixrunner: videos need the program 'ffmpeg', which is not in PATH (Debian "
              "package ffmpeg)\n");
}

}  // namespace
}  // namespace Tamrix
