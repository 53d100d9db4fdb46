#pragma once

#include <QIODevice>
#include <QSharedPointer>
#include <QStringList>
#include <utility>
#include <vector>

#include "base/outcome.h"
#include "runner/applications/applications.h"
#include "runner/video/videorecording.h"

namespace Tamrix {

/// The videos that a run is making. Each goes on until it is stopped or the test case ends, whoever
/// holds it. Script thread only.
class Recordings {
public:
    enum class Start {
        AtFirstPicture,  ///< what happens from now on is in the video
        AtOnce           ///< without waiting for the recorder
    };

    /// Records the display of an application, and makes it the application's video. On success the
    /// task owns the device, on a failure the caller still does.
    ///
    /// The device is an open file: the recorder writes to it by itself.
    Outcome<QSharedPointer<BackgroundTask>> start(Applications& applications,
                                                  const SharedPtr<Application>& application,
                                                  QIODevice* device, Start kind);

    /// Looks after the recordings, without waiting. Returns why some of them ended by themselves
    /// since the last call.
    QStringList work();
    /// Those that go on, to be stopped by the caller.
    std::vector<QSharedPointer<VideoRecording>> takeRunning() {
        return std::exchange(m_running, {});
    }

private:
    std::vector<QSharedPointer<VideoRecording>> m_running;
};

}  // namespace Tamrix
