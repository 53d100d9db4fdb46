#pragma once

#include <memory>

#include "platform/objectmodel/access.h"
#include "platform/objectmodel/applicationcontext.h"
#include "runner/applications/startedprogram.h"

namespace Tamrix {

/// One process of an application under test that is, or was, connected. Script thread only.
class Application : public ApplicationContext {
public:
    /// `program` is null for a process that this run did not start. A program has several
    /// applications when its children announce themselves, too.
    Application(int id, const QString& name, std::unique_ptr<Access> access,
                std::shared_ptr<StartedProgram> program);
    ~Application() override;

    /// Through which it is asked; also once it has ended.
    Access& access() { return *m_access; }
    /// Null when this run did not start it.
    StartedProgram* program() { return m_program.get(); }
    const std::shared_ptr<StartedProgram>& sharedProgram() const { return m_program; }
    /// Whether this is the process that the run itself started.
    bool isMainProcess();
    /// The machine that it runs on; empty for this one.
    QString host() const;

    /// Processes pending messages and updates `valid`.
    void work();
    /// Whether the process is there, connected or not.
    bool isRunning();
    /// Why it can't be asked any more: "The application 'x' has ended: it was ended by SIGSEGV
    /// (Segmentation fault)", with the last lines of standard error. Empty while it is connected.
    /// Waits a moment for a process that is about to end.
    QString endText();
    /// Closes the connection and leaves the process alone.
    void detach();
    /// Also ends its video and the program, if this run has started it, and drops the connection.
    void stop(const QString& message) override;

private:
    /// Whether the process has done nothing since the last call: it is stopped, or waits.
    bool isStalled();

    std::unique_ptr<Access> m_access;
    std::shared_ptr<StartedProgram> m_program;
    /// The first of its program.
    bool m_isFirst = false;
    bool m_isDetached = false;
    qint64 m_lastCpuTime = -1;
};

/// What /proc tells of a process. Each is -1 or empty when the process is gone.
/// Milliseconds of CPU time, in the program and for it.
qint64 cpuTime(pid_t process);
QString processDirectory(pid_t process);
/// "R" for one that runs or waits for a processor, "T" for one that is stopped, and so on.
QByteArray processState(pid_t process);
/// Zombies are not running.
bool isProcessRunning(pid_t process);

}  // namespace Tamrix
