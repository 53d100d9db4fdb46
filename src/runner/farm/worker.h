#pragma once

#include <sys/types.h>

#include <QList>
#include <QString>
#include <memory>
#include <optional>

#include "base/outcome.h"
#include "runner/farm/casetask.h"
#include "runner/processes/processend.h"
#include "runner/suites/suite.h"
#include "runner/suites/suiterun.h"

namespace Tamrix {

/// What all workers of a run share.
struct WorkerSettings {
    const Suite* suite = nullptr;
    const QList<SuiteCase>* cases = nullptr;
    SuiteRunOptions options;
    /// Where the journals of cases are written, one file each.
    QString spoolFolder;
};

/// The journal of the case that a worker runs; one at a time.
QString spoolFile(const QString& folder, int worker);

/// A process that runs cases one by one as it is told. It has its applications' display for itself
/// and keeps it from case to case. A forked child, so that all that the run was asked for holds in
/// it. Script thread only.
class Worker {
public:
    /// What a worker says.
    struct Message {
        enum Kind {
            Ready,         ///< it waits for its first case
            CaseDone,      ///< the case's journal is whole; it waits for the next one
            LastCaseDone,  ///< the same, but it can run no other one
            HasLooked      ///< what look() wanted is done, as far as it could be
        };
        Kind kind = Ready;
        /// Why it can't run any case, or why the journal could not be written; empty when all is
        /// well.
        QString error;
    };

    /// Forks. `number` tells workers apart. Never returns in the child.
    static Outcome<std::unique_ptr<Worker>> start(int number, const WorkerSettings& settings);
    /// Kills a process that is still there.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    int number() const { return m_number; }
    /// Becomes readable when the worker says something, or has ended.
    int descriptor() const { return m_socket; }

    /// Lets it run a case. A worker that has ended meanwhile is seen by hasEnded().
    void run(const CaseTask& task);
    /// Lets it end: no further case comes.
    void retire();
    /// Asks it to end its case, as Ctrl-C does.
    void ask(int signal, bool isTimeOut) const;
    /// Lets it tell in the case's journal where the script stands that does not react: it can do
    /// nothing else afterwards, and is to be killed.
    void look() const;
    void kill() const;

    /// What it has said and nobody has read yet.
    std::optional<Message> takeMessage();
    /// Whether the process is gone; looks without waiting.
    bool hasEnded();
    const ProcessEnd& end() const { return m_end; }

private:
    Worker(int number, pid_t process, int socket)
        : m_number(number), m_process(process), m_socket(socket) {}

    int m_number;
    pid_t m_process;
    int m_socket;
    bool m_hasEnded = false;
    ProcessEnd m_end;
};

}  // namespace Tamrix
