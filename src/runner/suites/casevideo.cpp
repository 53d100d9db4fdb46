#include "runner/suites/casevideo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <utility>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/generic/videocapture.h"
#include "runner/video/displayrecorder.h"

namespace Tamrix {

CaseVideo::CaseVideo(VideoMode mode, Runner& runner, TestResult& result)
    : m_mode(mode), m_runner(runner), m_result(result) {
    if (mode == VideoMode::Off)
        return;
    runner.facts.recordsVideo = true;
    runner.facts.onApplication = [this](const SharedPtr<Application>& application) {
        record(application);
    };
}

CaseVideo::~CaseVideo() {
    m_runner.facts.onApplication = nullptr;
}

Outcome<> CaseVideo::prepare() const {
    if (m_mode == VideoMode::Off)
        return {};
    const Outcome<QString> program = DisplayRecorder::findProgram();
    return program ? Outcome<>() : fail(program.error());
}

void CaseVideo::record(const SharedPtr<Application>& application) {
    if (std::exchange(m_isTried, true))
        return;
    const QString error = startVideoCapture(application, Interpreter::self());
    if (error.isEmpty()) {
        m_task = application->videoCapture;
        return;
    }
    // The test itself can do without.
    m_result.addResult(TestResult::Warning, QStringLiteral("No video of this test case"), error,
                       LineInfo(m_runner.facts.scriptPath, 0));
}

void CaseVideo::endCase(bool hasFailed) {
    const bool isWanted = m_mode != VideoMode::OnFailure || hasFailed;
    for (const auto& recording : m_runner.recordings.takeRunning())
        end(*recording, isWanted || recording != m_task);
    m_task.clear();
}

void CaseVideo::end(BackgroundTask& task, bool isWanted) {
    auto* const completer =
        qobject_cast<VideoCaptureCompleter*>(task.property("completer").value<QObject*>());
    if (!completer) {
        // A script's own file.
        task.stop(QString(), {});
        return;
    }
    // The completer asks the interpreter for the result, and that one has ended with the script.
    QObject::disconnect(&task, nullptr, completer, nullptr);
    const VoidResult status = task.stop(QString(), {});
    if (isWanted) {
        completer->tell(m_result, status,
                        QStringLiteral("Video capture stopped at the end of the test case"), {});
        return;
    }
    QFile::remove(completer->filePath);
    // The folder stays when something else is in it.
    QDir().rmdir(QFileInfo(completer->filePath).path());
    m_result.addDiscardedVideo(QStringLiteral("The test case has not failed"), completer->filePath);
}

}  // namespace Tamrix
