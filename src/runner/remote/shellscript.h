#pragma once

#include <QByteArray>

#include "base/outcome.h"
#include "runner/remote/system.h"

namespace Tamrix {

// Commands are started by a script that a POSIX shell reads from its standard input: so nothing has
// to pass the quotes of the user's own shell, and no value of a variable can be seen in a list of
// processes. Before the program starts, the shell writes one line that tells what became of it;
// all behind that line is the program's own.

/// The command that runs the shell. It can be given to any user's shell.
QByteArray shellCommand(const SystemCommand& command);

/// What the shell reads. Fails for what no shell can take: no program, a NUL, a wrong name of a
/// variable.
Outcome<QByteArray> shellScript(const SystemCommand& command);

/// A script that ends the processes of the group: asks first, and kills after a second.
QByteArray endingScript(qint64 processGroup);

/// Tells the shell's line from the program's output.
class ShellOutput {
public:
    /// The program's output begins behind this much of other output at the most, such as what a
    /// shell's start files write.
    static constexpr int mostNoise = 64 * 1024;
    /// What a program may write on each stream.
    static constexpr int mostOutput = 256 * 1024 * 1024;

    explicit ShellOutput(const SystemCommand& command) : m_command(command) {}

    /// Takes what came on standard output. Fails when the shell tells that the program can't be
    /// started, or what came is from no such shell.
    Outcome<> append(const char* bytes, int size);
    /// The same for standard error, of which all is the program's.
    Outcome<> appendError(const char* bytes, int size);
    /// Whether the program has been started.
    bool hasStarted() const { return m_process > 0; }
    /// The program's process and its group; 0 before it has started.
    qint64 process() const { return m_process; }
    const QByteArray& standardOutput() const { return m_output; }
    const QByteArray& standardError() const { return m_errors; }
    /// That the shell ended without having started the program.
    Failure neverStarted() const;

private:
    Outcome<> readLine(const QByteArray& line);
    Outcome<> checkSize(const QByteArray& output) const;

    SystemCommand m_command;
    qint64 m_process = 0;
    /// Before the line that tells, and the program's own behind it.
    QByteArray m_output;
    QByteArray m_errors;
};

/// The word in quotes for a POSIX shell.
QByteArray quotedForShell(const QByteArray& word);

}  // namespace Tamrix
