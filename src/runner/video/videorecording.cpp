#include "runner/video/videorecording.h"

namespace Tamrix {

namespace {

constexpr int lookInterval = 100;
constexpr int pushInterval = 2000;

}  // namespace

VideoRecording::VideoRecording(std::unique_ptr<DisplayRecorder> recorder,
                               std::unique_ptr<QFileDevice> file)
    : m_recorder(std::move(recorder)), m_file(std::move(file)), m_nextPush(pushInterval) {}

VideoRecording::~VideoRecording() = default;

// NOLINTNEXTLINE(performance-unnecessary-value-param): as the operation is declared
VoidResult VideoRecording::stop(QString message, CallStack stack) {
    if (m_hasEnded)
        return m_failure.isEmpty() ? VoidResult() : VoidResult::error(m_failure);
    const Outcome<> stopped = m_recorder->stop();
    if (!stopped)
        m_failure = stopped.error().text;
    const VoidResult status = stopped ? VoidResult() : VoidResult::error(m_failure);
    end(status, message, stack);
    return status;
}

bool VideoRecording::work() {
    if (m_hasEnded || !m_nextLook.hasExpired())
        return true;
    m_nextLook.setRemainingTime(lookInterval);
    if (m_nextPush.hasExpired()) {
        m_nextPush.setRemainingTime(pushInterval);
        m_recorder->pushToDisk();
    }
    if (!m_recorder->hasEnded())
        return true;
    m_failure = m_recorder->endText();
    end(VoidResult::error(m_failure), QString(), {});
    return false;
}

void VideoRecording::end(const VoidResult& status, const QString& message, const CallStack& stack) {
    m_hasEnded = true;
    m_recorder.reset();
    m_file.reset();
    Q_EMIT stopped(status, message, stack);
}

}  // namespace Tamrix
