#pragma once

#include <QDeadlineTimer>
#include <QFileDevice>
#include <memory>

#include "interpreter/bridge/backgroundtask.h"
#include "runner/video/displayrecorder.h"

namespace Tamrix {

/// The task of one video. Script thread only, where it also tells its end.
class VideoRecording : public BackgroundTask {
public:
    /// Takes the file over, which is closed when the recording ends.
    VideoRecording(std::unique_ptr<DisplayRecorder> recorder, std::unique_ptr<QFileDevice> file);
    /// Drops what is still recorded.
    ~VideoRecording() override;

    VoidResult stop(QString message, CallStack stack) override;

    /// Looks whether the recording goes on, and tells its end when it does not. False then, once.
    bool work();
    bool hasEnded() const { return m_hasEnded; }
    /// Why it ended by itself; empty otherwise.
    QString failureText() const { return m_failure; }

private:
    void end(const VoidResult& status, const QString& message, const CallStack& stack);

    std::unique_ptr<DisplayRecorder> m_recorder;
    std::unique_ptr<QFileDevice> m_file;
    QDeadlineTimer m_nextLook;
    QDeadlineTimer m_nextPush;
    bool m_hasEnded = false;
    QString m_failure;
};

}  // namespace Tamrix
