#include "runner/remote/localcommand.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "base/blocking.h"
#include "runner/remote/shellscript.h"

namespace Tamrix {

namespace {

/// How often others get their turn while the program is waited for, in milliseconds.
constexpr int pollInterval = 50;
constexpr int endPollInterval = 5;

/// A descriptor that is closed with the object.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    void close() {
        if (m_descriptor >= 0)
            ::close(std::exchange(m_descriptor, -1));
    }

private:
    int m_descriptor = -1;
};

/// Both ends of a stream between this process, in whose end nothing blocks, and the shell.
struct Stream {
    Descriptor ours;
    Descriptor theirs;
};

/// A socket: writing to an end of which nobody reads raises no signal.
bool openStream(Stream* stream) {
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    stream->ours = Descriptor(ends[0]);
    stream->theirs = Descriptor(ends[1]);
    return ::fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0;
}

/// The same for what the shell writes: a pipe, as programs expect.
bool openPipe(Stream* stream) {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return false;
    stream->ours = Descriptor(ends[0]);
    stream->theirs = Descriptor(ends[1]);
    return ::fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0;
}

/// A shell at work on one command.
class LocalShell {
public:
    explicit LocalShell(const SystemCommand& command) : m_output(command) {}
    /// Ends what is left.
    ~LocalShell() {
        if (m_process <= 0 || m_hasEnded)
            return;
        ::kill(-m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    LocalShell(const LocalShell&) = delete;
    LocalShell& operator=(const LocalShell&) = delete;

    Outcome<> start(const SystemCommand& command, const QByteArray& script);
    /// Reads and writes what is possible, and waits for that up to this long.
    Outcome<> work(int milliseconds);
    bool hasEnded();
    bool hasOutputEnded() const {
        return !m_streams[1].ours.isOpen() && !m_streams[2].ours.isOpen();
    }
    void terminate();
    int exitCode() const { return m_exitCode; }
    const ShellOutput& output() const { return m_output; }

private:
    Outcome<> read(int number);

    ShellOutput m_output;
    QByteArray m_script;
    /// In the order of the numbers that programs know them by.
    std::array<Stream, 3> m_streams;
    pid_t m_process = -1;
    bool m_hasEnded = false;
    int m_exitCode = -1;
};

Outcome<> LocalShell::start(const SystemCommand& command, const QByteArray& script) {
    if (!openStream(&m_streams[0]) || !openPipe(&m_streams[1]) || !openPipe(&m_streams[2])) {
        return fail(FailureKind::Failed,
                    QStringLiteral("no shell can be started: %1").arg(qt_error_string(errno)));
    }
    m_script = script;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (int number = 0; number < 3; ++number)
        ::posix_spawn_file_actions_adddup2(
            &actions, m_streams[static_cast<size_t>(number)].theirs.get(), number);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t all;
    sigfillset(&all);
    sigset_t none;
    sigemptyset(&none);
    ::posix_spawnattr_setsigdefault(&attributes, &all);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    ::posix_spawnattr_setflags(&attributes,
                               POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    const QByteArray shell = shellCommand(command);
    const char* arguments[] = {"sh", "-c", shell.constData(), nullptr};
    const int error = ::posix_spawn(&m_process, "/bin/sh", &actions, &attributes,
                                    const_cast<char* const*>(arguments), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
    for (Stream& stream : m_streams)
        stream.theirs.close();
    if (error == 0)
        return {};
    m_process = -1;
    return fail(FailureKind::Failed,
                QStringLiteral("no shell can be started: %1").arg(qt_error_string(error)));
}

Outcome<> LocalShell::read(int number) {
    Descriptor& stream = m_streams[static_cast<size_t>(number)].ours;
    std::array<char, 65536> buffer;
    const ssize_t size = ::read(stream.get(), buffer.data(), buffer.size());
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return {};
    if (size <= 0) {
        stream.close();
        return {};
    }
    if (number == 1)
        return m_output.append(buffer.data(), static_cast<int>(size));
    return m_output.appendError(buffer.data(), static_cast<int>(size));
}

Outcome<> LocalShell::work(int milliseconds) {
    // A closed stream is -1, which poll() passes over.
    std::array<pollfd, 3> watched{pollfd{m_streams[0].ours.get(), POLLOUT, 0},
                                  pollfd{m_streams[1].ours.get(), POLLIN, 0},
                                  pollfd{m_streams[2].ours.get(), POLLIN, 0}};
    blockingPoll(watched.data(), watched.size(), milliseconds);
    if (watched[0].revents != 0) {
        const ssize_t size = ::send(watched[0].fd, m_script.constData(),
                                    static_cast<size_t>(m_script.size()), MSG_NOSIGNAL);
        if (size > 0)
            m_script.remove(0, static_cast<int>(size));
        const bool isBroken = size < 0 && errno != EAGAIN && errno != EINTR;
        if (m_script.isEmpty() || isBroken)
            m_streams[0].ours.close();
    }
    for (const int number : {1, 2}) {
        if (watched[static_cast<size_t>(number)].revents == 0)
            continue;
        if (const Outcome<> done = read(number); !done)
            return done;
    }
    return {};
}

bool LocalShell::hasEnded() {
    int status = 0;
    if (m_hasEnded || ::waitpid(m_process, &status, WNOHANG) == 0)
        return m_hasEnded;
    m_hasEnded = true;
    m_exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return true;
}

void LocalShell::terminate() {
    constexpr int patience = 1000;
    ::kill(-m_process, SIGTERM);
    const QDeadlineTimer deadline(patience);
    while (!hasEnded() && !deadline.hasExpired())
        blockingSleep(endPollInterval * 1000UL);
    ::kill(-m_process, SIGKILL);
}

}  // namespace

Failure commandTimeout(const SystemCommand& command) {
    return {FailureKind::TimedOut,
            QStringLiteral("'%1' did not end within %2 s and was ended")
                .arg(command.words.value(0), QString::number(command.timeout / 1000.0))};
}

Failure commandInterrupted(const SystemCommand& command) {
    return {
        FailureKind::Failed,
        QStringLiteral("the run was interrupted, and '%1' was ended").arg(command.words.value(0))};
}

Outcome<CommandResult> runLocalCommand(const SystemCommand& command,
                                       const std::function<bool()>& idle) {
    const Outcome<QByteArray> script = shellScript(command);
    if (!script)
        return fail(script.error());
    LocalShell shell(command);
    if (const Outcome<> started = shell.start(command, *script); !started)
        return fail(started.error());
    const QDeadlineTimer deadline = command.timeout > 0 ? QDeadlineTimer(command.timeout)
                                                        : QDeadlineTimer(QDeadlineTimer::Forever);
    QDeadlineTimer late(QDeadlineTimer::Forever);
    while (!shell.hasEnded() || !shell.hasOutputEnded()) {
        const bool isQuiet = shell.hasOutputEnded() || shell.hasEnded();
        if (const Outcome<> worked = shell.work(isQuiet ? endPollInterval : pollInterval); !worked)
            return fail(worked.error());
        if (shell.hasEnded() && late.isForever())
            late = QDeadlineTimer(lateOutputPatience);
        if (late.hasExpired())
            break;
        const bool isInTime = shell.hasEnded() || !deadline.hasExpired();
        if (isInTime && idle())
            continue;
        shell.terminate();
        return fail(isInTime ? commandInterrupted(command) : commandTimeout(command));
    }
    const ShellOutput& output = shell.output();
    if (!output.hasStarted())
        return fail(output.neverStarted());
    return CommandResult{shell.exitCode(), output.standardOutput(), output.standardError()};
}

}  // namespace Tamrix
