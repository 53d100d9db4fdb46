#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <csignal>
#include <memory>

#include "base/outcome.h"
#include "runner/processes/childoutput.h"
#include "runner/processes/processend.h"

namespace Tamrix {

/// Changes of the environment for a program, in order: a name with its value, or with the null text
/// to take the variable out.
using ProgramEnvironment = QList<QPair<QString, QString>>;

/// What a program is started with.
struct ProgramStart {
    /// Path of the program's file.
    QString program;
    QStringList arguments;
    /// Empty for that of this process.
    QString workingDirectory;
    /// On top of the environment of this process.
    ProgramEnvironment environment;
    /// By which the program and all that comes of it are found: see markedprocesses.h. Empty for
    /// none.
    QString mark;
    /// Otherwise the program writes where this process does.
    bool keepsOutput = true;
    /// Where standard output goes instead; not owned, -1 for none. What is kept is then standard
    /// error alone.
    int outputDescriptor = -1;
    /// What the program gets when this process ends, however that happens.
    int signalAtRunnersEnd = SIGKILL;
};

/// A program that this one started, in a session of its own and with nothing to read on standard
/// input. Script thread only.
///
/// By hand, since QProcess reads output in an event loop only, which a busy script does not run,
/// handles SIGCHLD, which is the script's, and can't let the program end with this process.
class ChildProcess {
public:
    static Outcome<std::unique_ptr<ChildProcess>> start(const ProgramStart& start);
    /// Leaves the program as it is.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }
    /// Looks whether the program has ended, without waiting.
    bool hasEnded();
    /// Whether hasEnded() has seen that; for where each look would count.
    bool wasSeenEnded() const { return m_hasEnded; }
    /// Waits for the end, at most this long.
    bool waitForEnd(int milliseconds);
    /// How it ended: "it exited with code 3", "it was ended by SIGSEGV (Segmentation fault)". Empty
    /// while it runs.
    QString endText() const { return m_hasEnded ? m_end.text : QString(); }
    /// The exit code as a shell tells it: 128 and the signal's number for one that a signal ended.
    int exitCode() const { return m_end.exitCode; }
    /// The signal that ended it, 0 for none.
    int endSignal() const { return m_end.signal; }
    /// Null when the output is not kept.
    ChildOutput* output() const { return m_output.get(); }

private:
    explicit ChildProcess(pid_t pid) : m_pid(pid), m_parent(::getpid()) {}

    pid_t m_pid;
    pid_t m_parent;
    bool m_hasEnded = false;
    ProcessEnd m_end;
    std::unique_ptr<ChildOutput> m_output;
};

}  // namespace Tamrix
