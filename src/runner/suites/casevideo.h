#pragma once

#include <QString>

#include "platform/testresult/testresult.h"
#include "runner/services/runner.h"

namespace Tamrix {

/// Of which test cases a run keeps a video.
enum class VideoMode { Off, On, OnFailure };

/// The video that a run makes of each of its cases: of the display of the first application that
/// the case gets, from then on to the end of its applications. Script thread only.
class CaseVideo {
public:
    /// Both outlive this.
    CaseVideo(VideoMode mode, Runner& runner, TestResult& result);
    ~CaseVideo();
    CaseVideo(const CaseVideo&) = delete;
    CaseVideo& operator=(const CaseVideo&) = delete;

    /// Whether videos can be made at all here.
    Outcome<> prepare() const;
    /// Another case begins.
    void startCase() { m_isTried = false; }
    /// Ends the case's video and what the script left running. Who only wants the videos of failed
    /// cases has no file of a passed one afterwards.
    void endCase(bool hasFailed);

private:
    void record(const SharedPtr<Application>& application);
    /// Stops a recording and tells the result; one that nobody wants leaves no file.
    void end(BackgroundTask& task, bool isWanted);

    VideoMode m_mode;
    Runner& m_runner;
    TestResult& m_result;
    /// Whether this case has come so far as to have a video, or to be told why it has none.
    bool m_isTried = false;
    QSharedPointer<BackgroundTask> m_task;
};

}  // namespace Tamrix
