#pragma once

#include <sys/types.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QString>
#include <vector>

namespace Tamrix {

/// What a process with these mappings (the text of /proc/PID/maps) tells of the agent's chances.
struct AgentProspect {
    /// A toolkit that takes one is there, and nothing is in the agent's way. False for a process
    /// that has no toolkit yet.
    bool isPossible = false;
    /// Why none will come, for "'x' was started, but ...". Empty when one may.
    QString obstacle;
};
AgentProspect agentProspect(const QByteArray& maps);

/// The version of the Qt that is linked statically into the program of the file, "6.4.2"; empty for
/// none. Reads the whole file.
QString staticQtVersion(const QString& programFile);

/// Why no agent comes into the processes. Empty when there is no reason, and when one may come into
/// one of them.
QString agentObstacle(const std::vector<pid_t>& processes);

/// Whether the agent's library is loaded into one of the processes. It connects when the event loop
/// runs.
bool isAgentLoaded(const std::vector<pid_t>& processes);

/// Finds out during the start of a program that no agent will come. A program may load its
/// toolkits one after the other, so it is only sure after a while.
class ForeignToolkitWatch {
public:
    /// How long something may at least look to be in the agent's way, in milliseconds. On a busy
    /// machine it takes programs longer to start: twice as long as it took so far.
    static constexpr int patience = 1000;
    /// The same for a program that works meanwhile, or on a machine whose processors are all at
    /// work: at most so long.
    static constexpr int busyPatience = 8000;
    static constexpr int lookInterval = 250;

    ForeignToolkitWatch() { m_sinceStart.start(); }

    bool isLookDue() const { return m_nextLook.hasExpired(); }
    /// The obstacle when it is sure now, else empty.
    QString look(const std::vector<pid_t>& processes);

private:
    /// Whether one of them has worked since the last look, or may have been kept from it.
    bool areBusy(const std::vector<pid_t>& processes);

    QElapsedTimer m_sinceStart;
    QDeadlineTimer m_nextLook;
    QDeadlineTimer m_sure;
    QDeadlineTimer m_latest;
    QString m_seen;
    qint64 m_cpuTime = 0;
};

}  // namespace Tamrix
