#pragma once

#include <sys/types.h>

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <memory>

#include "runner/childoutput.h"

namespace Tamrix {

/// The environment of a program, in order; a later entry replaces an earlier one of that name.
using ProgramEnvironment = QList<QPair<QString, QString>>;

/// What a program is started with.
struct ProgramStart {
    /// Path of the program's file.
    QString program;
    QStringList arguments;
    /// Empty for that of this process.
    QString workingDirectory;
    /// Added to the environment of this process.
    ProgramEnvironment environment;
    /// Otherwise the program writes where this process does.
    bool keepsOutput = true;
};

/// A program that this one started, in a session of its own and with nothing to read on standard
/// input. It is killed when this process ends, however that happens. Script thread only.
class ChildProcess {
public:
    /// Null when the program can't be started, with `*error` saying why.
    static std::unique_ptr<ChildProcess> start(const ProgramStart& start, QString* error);
    /// Leaves the program as it is.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }
    /// Looks whether the program has ended, without waiting.
    bool hasEnded();
    /// Waits for the end, at most this long.
    bool waitForEnd(int milliseconds);
    /// How it ended: "it exited with code 3", "it was ended by SIGSEGV (Segmentation fault)". Empty
    /// while it runs.
    QString endText() const { return m_endText; }
    /// The exit code as a shell tells it: 128 and the signal's number for one that a signal ended.
    int exitCode() const { return m_exitCode; }
    /// Null when the output is not kept.
    const ChildOutput* output() const { return m_output.get(); }

private:
    explicit ChildProcess(pid_t pid) : m_pid(pid) {}
    void setEnd(int code, int status);

    pid_t m_pid;
    bool m_hasEnded = false;
    int m_exitCode = -1;
    QString m_endText;
    std::unique_ptr<ChildOutput> m_output;
};

}  // namespace Tamrix
