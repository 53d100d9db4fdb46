#include "runner/farm/worker.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include "runner/farm/casespool.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/lastlook.h"
#include "runner/processes/supervision.h"

namespace Tamrix {

namespace {

/// Longest error text that a message carries, in bytes.
constexpr int longestError = 4096;

/// The signals that the parent takes in its own way.
sigset_t runSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD})
        sigaddset(&set, signal);
    return set;
}

/// The worker's own side of the conversation.
class WorkerLink {
public:
    WorkerLink(int socket, const QList<SuiteCase>& cases) : m_socket(socket), m_cases(cases) {}

    void say(Worker::Message::Kind kind, const QString& error) const {
        QByteArray message(1, static_cast<char>(kind));
        message += error.toUtf8().left(longestError);
        // Whoever listened is gone, and so is this process soon.
        while (::send(m_socket, message.constData(), static_cast<size_t>(message.size()),
                      MSG_NOSIGNAL) < 0 &&
               errno == EINTR)
            continue;
    }

    /// Waits for the next case; null when there is none, or a signal came.
    const SuiteCase* next() {
        ssize_t size;
        while ((size = ::recv(m_socket, &m_task, sizeof m_task, 0)) < 0 && errno == EINTR &&
               Interrupt::signalNumber() == 0)
            continue;
        return size == sizeof m_task && m_task.index >= 0 && m_task.index < m_cases.size()
                   ? &m_cases.at(m_task.index)
                   : nullptr;
    }
    int attempt() const { return m_task.attempt; }

private:
    int m_socket;
    const QList<SuiteCase>& m_cases;
    CaseTask m_task;
};

/// Only what is safe in a signal handler.
void sayHasLooked(int socket) {
    const char kind = Worker::Message::HasLooked;
    ::send(socket, &kind, sizeof kind, MSG_NOSIGNAL);
}

/// Several processes can't share what a person types.
void closeInput() {
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing >= 0) {
        ::dup2(nothing, STDIN_FILENO);
        ::close(nothing);
    }
}

void work(int number, int socket, const WorkerSettings& settings) {
    WorkerLink link(socket, *settings.cases);
    CaseSpool spool(
        spoolFile(settings.spoolFolder, number), [&] { return link.attempt(); },
        [&](const QString& error) {
            link.say(SuiteRun::isProcessSpoiled() ? Worker::Message::LastCaseDone
                                                  : Worker::Message::CaseDone,
                     error);
        });
    SuiteRunOptions options = settings.options;
    options.mayHandOver = true;
    SuiteRun run(*settings.suite, options, &spool);
    LastLook::prepare([&] { run.tellWhereScriptStands(); }, [socket] { sayHasLooked(socket); });
    const Outcome<> prepared = run.prepare();
    link.say(Worker::Message::Ready, prepared ? QString() : prepared.error().text);
    if (prepared)
        run.run([&link] { return link.next(); });
}

}  // namespace

QString spoolFile(const QString& folder, int worker) {
    return QStringLiteral("%1/%2.jsonl").arg(folder, QString::number(worker));
}

Outcome<std::unique_ptr<Worker>> Worker::start(int number, const WorkerSettings& settings) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return fail(FailureKind::Failed, qt_error_string(errno));
    // What is not written yet would be written by both.
    std::fflush(nullptr);
    const pid_t process = Supervision::startWorker();
    if (process == 0) {
        const sigset_t signals = runSignals();
        ::sigprocmask(SIG_UNBLOCK, &signals, nullptr);
        ::close(ends[0]);
        closeInput();
        Interrupt::leaveHintToOthers();
        work(number, ends[1], settings);
        std::fflush(nullptr);
        // The reports are those of the parent.
        ::_exit(0);
    }
    const int error = errno;
    ::close(ends[1]);
    if (process < 0) {
        ::close(ends[0]);
        return fail(FailureKind::Failed, qt_error_string(error));
    }
    return std::unique_ptr<Worker>(new Worker(number, process, ends[0]));
}

Worker::~Worker() {
    if (!m_hasEnded) {
        kill();
        while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR)
            continue;
    }
    ::close(m_socket);
}

void Worker::run(const CaseTask& task) {
    ::send(m_socket, &task, sizeof task, MSG_NOSIGNAL);
}

void Worker::retire() {
    ::shutdown(m_socket, SHUT_WR);
}

void Worker::ask(int signal, bool isTimeOut) const {
    // Another process may have its number by now.
    if (!m_hasEnded)
        Interrupt::ask(m_process, signal, isTimeOut);
}

void Worker::look() const {
    if (!m_hasEnded)
        LastLook::ask(m_process);
}

void Worker::kill() const {
    if (!m_hasEnded)
        ::kill(m_process, SIGKILL);
}

std::optional<Worker::Message> Worker::takeMessage() {
    char bytes[1 + longestError];
    const ssize_t size = ::recv(m_socket, bytes, sizeof bytes, MSG_DONTWAIT);
    if (size < 1 || bytes[0] < Message::Ready || bytes[0] > Message::HasLooked)
        return std::nullopt;
    return Message{static_cast<Message::Kind>(bytes[0]),
                   QString::fromUtf8(bytes + 1, static_cast<int>(size) - 1)};
}

bool Worker::hasEnded() {
    int status = 0;
    if (!m_hasEnded && ::waitpid(m_process, &status, WNOHANG) == m_process) {
        m_hasEnded = true;
        m_end = processEnd(status);
    }
    return m_hasEnded;
}

}  // namespace Tamrix
