#pragma once

#include <QDeadlineTimer>
#include <QString>
#include <QStringList>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

#include "runner/applications/startedprogram.h"

namespace Tamrix {

/// The end of a program that nobody asked for.
struct UnexpectedEnd {
    /// It was ended by a signal; otherwise it exited with a code other than 0.
    bool isCrash = false;
    /// "The application 'x' has ended: it exited with code 3", with its last output.
    QString text;
};

/// The programs that a test case has started: gives back what those that have ended need no more,
/// and tells how they ended. Script thread only.
class StartedPrograms {
public:
    using Pointer = std::shared_ptr<StartedProgram>;

    /// How many programs keep all their output: the last ones that were started.
    static constexpr size_t recentCount = 5;

    /// What the run itself does to the programs, so that it knows its own doing.
    enum class EndCause {
        None,
        AskedToClose,  ///< their windows; that is no reason to fail
        Terminated     ///< by SIGTERM and SIGKILL
    };

    void add(const Pointer& program);
    /// Takes a program out whose start failed.
    void remove(const Pointer& program);
    /// The program that a process is, or came of; null for none.
    Pointer of(pid_t process) const;
    /// Whether anything of a program may still run.
    bool isAnyRunning() const { return !m_running.empty(); }
    /// Looks at all processes of the machine for each program that has ended.
    bool isAnyAlive();
    /// Those whose output tells about a failure: `current`, and the last ones that were started.
    std::vector<Pointer> ofInterest(const Pointer& current) const;

    /// Processes what is pending. Never waits for a program, only for the last output of one that
    /// has ended.
    void work();
    void setEndCause(EndCause cause) { m_endCause = cause; }
    /// Ends all that is left: asks, and kills after `patience` milliseconds. Returns the names of
    /// those that could not be ended. Afterwards this is as new but for the unexpected ends.
    QStringList endAll(int patience);

    /// What ended since the last call, in order, as far as it was not the run's own doing. Leaves
    /// out programs that are not watched, and those whose end the script expects.
    std::vector<UnexpectedEnd> takeUnexpectedEnds() { return std::exchange(m_ends, {}); }

private:
    struct Running {
        Pointer program;
        bool isEndNoted = false;
    };

    void noteEnds();
    void noteEnd(StartedProgram& program);
    bool isRecent(const Pointer& program) const;

    std::vector<Running> m_running;
    std::deque<Pointer> m_recent;
    EndCause m_endCause = EndCause::None;
    std::vector<UnexpectedEnd> m_ends;
    /// Looking for what is left of a program reads all processes of the machine.
    QDeadlineTimer m_nextSettling;
};

}  // namespace Tamrix
