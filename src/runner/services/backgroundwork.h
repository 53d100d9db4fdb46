#pragma once

#include <QString>

#include "platform/testresult/lineinfo.h"
#include "runner/applications/applications.h"
#include "runner/services/runfacts.h"
#include "runner/video/recordings.h"

namespace Tamrix {

/// The work beside a script: processes pending messages of applications, dispatches their events to
/// handlers, and reports applications and videos that have ended. Script thread only; needs a
/// QCoreApplication for waits.
///
/// Handlers run at the end of the script's calls, in waits and in processEvents(), never while a
/// request is under way.
class BackgroundWork {
public:
    /// All outlive this.
    BackgroundWork(Applications& applications, Recordings& recordings, const RunFacts& facts)
        : m_applications(applications), m_recordings(recordings), m_facts(facts) {}

    /// A test case begins.
    void startCase() { m_lastCall = LineInfo(); }
    /// Does all that is due, without waiting, and lets the debugger look whether it is to pause.
    void work();
    /// The same for so long. Ends early when the run is interrupted.
    void snooze(double seconds);
    /// The same once, and Qt's events.
    void processEvents();
    /// Reports programs that ended without being asked to, at the last line of the script that
    /// called a function: an Error for a crash, a Warning for an exit code other than 0.
    void reportUnexpectedEnds();

    /// A call of the script begins or ends. Calls may contain others.
    void beginCall();
    void endCall();

private:
    void noteCall();
    void lookAfterRecordings();
    void runHandlers();
    void runHandler(const QString& callback);

    Applications& m_applications;
    Recordings& m_recordings;
    const RunFacts& m_facts;
    int m_callDepth = 0;
    /// Where the last call of the script stands that began while an application ran.
    LineInfo m_lastCall;
    bool m_isRunningHandlers = false;
};

}  // namespace Tamrix
