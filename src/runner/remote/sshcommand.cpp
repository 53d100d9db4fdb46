#include "runner/remote/sshcommand.h"

#include <QDeadlineTimer>
#include <array>
#include <functional>

#include "runner/remote/localcommand.h"
#include "runner/remote/shellscript.h"
#include "runner/remote/sshchannel.h"

namespace Tamrix {

namespace {

/// A shell on the server's machine at work on one command.
class SshShell {
public:
    explicit SshShell(SshConnection& connection, const SystemCommand& command)
        : m_connection(connection), m_output(command) {}

    Outcome<> start(const SystemCommand& command, const QByteArray& script) {
        Outcome<std::unique_ptr<SshChannel>> channel =
            SshChannel::command(m_connection, shellCommand(command));
        if (!channel)
            return fail(channel.error());
        m_channel = std::move(*channel);
        if (const Outcome<> written = m_channel->writeAll(script); !written)
            return written;
        m_channel->endInput();
        return {};
    }

    /// Reads what is there; waits for more when there is nothing.
    Outcome<> work() {
        std::array<char, 65536> buffer;
        int total = 0;
        for (const SshChannel::Stream stream :
             {SshChannel::Stream::Output, SshChannel::Stream::Error}) {
            const Outcome<int> size =
                m_channel->read(stream, buffer.data(), static_cast<int>(buffer.size()));
            if (!size)
                return fail(size.error());
            total += *size;
            const Outcome<> taken = stream == SshChannel::Stream::Output
                                        ? m_output.append(buffer.data(), *size)
                                        : m_output.appendError(buffer.data(), *size);
            if (!taken)
                return taken;
        }
        if (total > 0 || (hasEnded() && m_channel->hasOutputEnded()))
            return {};
        return m_connection.wait(100);
    }

    bool hasEnded() const { return m_channel->exitCode() >= 0 || m_channel->isClosed(); }
    bool hasOutputEnded() const { return m_channel->hasOutputEnded(); }
    int exitCode() const { return m_channel->exitCode(); }
    const ShellOutput& output() const { return m_output; }

private:
    SshConnection& m_connection;
    std::unique_ptr<SshChannel> m_channel;
    ShellOutput m_output;
};

/// Works until something is so. False when the connection fails or it takes too long.
bool workUntil(SshShell& shell, const std::function<bool()>& isSo) {
    constexpr int patience = 20000;
    const QDeadlineTimer deadline(patience);
    bool isWorking = true;
    while (isWorking && !isSo() && !deadline.hasExpired())
        isWorking = bool(shell.work());
    return isSo();
}

/// Ends what is left of a shell's program. Best effort: the connection may be gone.
void endProgram(SshConnection& connection, SshShell& shell) {
    if (!connection.endText().isEmpty())
        return;
    // Also for a run that was interrupted.
    const std::function<bool()> hook = connection.takeIdleHook();
    // 1. A program that is only about to start would be left behind.
    const auto hasStarted = [&] { return shell.output().hasStarted() || shell.hasEnded(); };
    if (workUntil(shell, hasStarted) && shell.output().hasStarted()) {
        // 2. The program and all that came of it.
        const SystemCommand command{{QStringLiteral("kill")}};
        SshShell killer(connection, command);
        if (killer.start(command, endingScript(shell.output().process())))
            workUntil(killer, [&] { return killer.hasEnded(); });
    }
    connection.setIdleHook(hook);
}

}  // namespace

Outcome<CommandResult> runSshCommand(SshConnection& connection, const SystemCommand& command) {
    const Outcome<QByteArray> script = shellScript(command);
    if (!script)
        return fail(script.error());
    SshShell shell(connection, command);
    if (const Outcome<> started = shell.start(command, *script); !started)
        return fail(started.error());
    const QDeadlineTimer deadline = command.timeout > 0 ? QDeadlineTimer(command.timeout)
                                                        : QDeadlineTimer(QDeadlineTimer::Forever);
    QDeadlineTimer late(QDeadlineTimer::Forever);
    while (!shell.hasEnded() || !shell.hasOutputEnded()) {
        const Outcome<> worked = shell.work();
        if (!worked) {
            endProgram(connection, shell);
            return fail(worked.error());
        }
        if (shell.hasEnded() && late.isForever())
            late = QDeadlineTimer(lateOutputPatience);
        if (late.hasExpired())
            break;
        if (!shell.hasEnded() && deadline.hasExpired()) {
            endProgram(connection, shell);
            return fail(commandTimeout(command));
        }
    }
    if (!shell.output().hasStarted())
        return fail(shell.output().neverStarted());
    return CommandResult{shell.exitCode(), shell.output().standardOutput(),
                         shell.output().standardError()};
}

}  // namespace Tamrix
