#include "runner/relay/relay.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <array>
#include <cerrno>
#include <memory>
#include <vector>

#include "base/environment.h"
#include "base/filewriting.h"
#include "runner/applications/agentserver.h"
#include "runner/applications/applicationstart.h"
#include "runner/applications/privatedisplay.h"
#include "runner/processes/childprocess.h"
#include "runner/processes/markedprocesses.h"
#include "runner/processes/privatefolder.h"
#include "runner/processes/runwatch.h"
#include "runner/processes/shellwords.h"
#include "runner/relay/links.h"
#include "wire/framechannel.h"

namespace Tamrix::Relay {

namespace {

constexpr int pollInterval = 50;
/// How long a program is asked to end before it is killed, in milliseconds.
constexpr int endPatience = 1000;
/// How long output may come behind the end of the program.
constexpr int outputPatience = 500;
/// What may wait for the other end before no more is read.
constexpr int mostQueued = 4 * 1024 * 1024;

/// Both ends of a pipe, of which the program gets the second.
struct OutputPipe {
    int ends[2] = {-1, -1};

    OutputPipe() {
        if (::pipe2(ends, O_CLOEXEC) == 0)
            ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    ~OutputPipe() {
        for (const int end : ends) {
            if (end >= 0)
                ::close(end);
        }
    }
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;
    void closeReadEnd() { ::close(std::exchange(ends[0], -1)); }
};

class Relayed {
public:
    Relayed(int input, int output)
        : m_input(input),
          m_output(output),
          m_runId(randomToken()),
          m_links([this](const Frame& frame) { send(frame); }) {}
    ~Relayed() {
        if (m_listener >= 0)
            ::close(m_listener);
    }
    Relayed(const Relayed&) = delete;
    Relayed& operator=(const Relayed&) = delete;

    int run() {
        send({Type::Hello, 0, greeting()});
        m_sinceSign = QDeadlineTimer(alivePatience);
        while (isWorking())
            work();
        endProgram();
        // The last words.
        ::fcntl(m_output, F_SETFL, 0);
        QString ignored;
        if (m_isInputOpen)
            writeAll(m_output, m_queued, &ignored);
        return 0;
    }

private:
    bool isWorking() const { return m_isInputOpen && !m_sinceSign.hasExpired() && !m_isDone; }

    void send(const Frame& frame) { m_queued += encode(frame); }

    void work() {
        const bool isReading = m_queued.size() < mostQueued;
        std::vector<pollfd> watched{{m_input, POLLIN, 0},
                                    {m_queued.isEmpty() ? -1 : m_output, POLLOUT, 0},
                                    {m_listener, POLLIN, 0},
                                    {isReading ? m_standardOutput.ends[0] : -1, POLLIN, 0},
                                    {isReading ? m_standardError.ends[0] : -1, POLLIN, 0}};
        m_links.watch(&watched, isReading);
        ::poll(watched.data(), watched.size(), pollInterval);
        if (watched[0].revents != 0)
            readInput();
        if (watched[1].revents != 0)
            writeOutput();
        if (watched[2].revents != 0)
            acceptAgent();
        if (watched[3].revents != 0)
            readProgram(m_standardOutput, Type::Output);
        if (watched[4].revents != 0)
            readProgram(m_standardError, Type::Errors);
        m_links.work(watched);
        lookForEnd();
    }

    void readInput() {
        std::array<char, 65536> buffer;
        const ssize_t size = ::read(m_input, buffer.data(), buffer.size());
        if (size < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        if (size <= 0) {
            m_isInputOpen = false;
            return;
        }
        m_sinceSign = QDeadlineTimer(alivePatience);
        m_inbox.append(buffer.data(), static_cast<int>(size));
        while (true) {
            const Outcome<std::optional<Frame>> frame = m_inbox.take();
            if (!frame)
                m_isInputOpen = false;
            if (!frame || !*frame)
                return;
            take(**frame);
        }
    }

    void take(const Frame& frame) {
        switch (frame.type) {
            case Type::Start:
                if (const Outcome<> started = start(frame.body); !started) {
                    send({Type::Failed, 0, started.error().text.toUtf8()});
                    m_isDone = true;
                }
                break;
            case Type::Data:
            case Type::Close:
                m_links.take(frame);
                break;
            case Type::Stop:
                endProgram();
                break;
            default:
                break;
        }
    }

    void writeOutput() {
        const ssize_t size =
            ::write(m_output, m_queued.constData(), static_cast<size_t>(m_queued.size()));
        if (size > 0)
            m_queued.remove(0, static_cast<int>(size));
        else if (errno != EAGAIN && errno != EINTR)
            m_isInputOpen = false;
    }

    void acceptAgent() {
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            return;
        send({Type::Open, ++m_lastLink, {}});
        m_links.add(m_lastLink, descriptor);
    }

    void readProgram(OutputPipe& pipe, Type type) {
        std::array<char, 65536> buffer;
        const ssize_t size = ::read(pipe.ends[0], buffer.data(), buffer.size());
        if (size > 0)
            send({type, 0, QByteArray(buffer.data(), static_cast<int>(size))});
        else if (size == 0 || (errno != EAGAIN && errno != EINTR))
            pipe.closeReadEnd();
    }

    Outcome<> start(const QByteArray& bytes);
    Outcome<> startDisplay(ProgramStart* program);

    void lookForEnd() {
        if (!m_process || !m_process->hasEnded())
            return;
        if (m_lateOutput.isForever())
            m_lateOutput = QDeadlineTimer(outputPatience);
        const bool isOutputOpen = m_standardOutput.ends[0] >= 0 || m_standardError.ends[0] >= 0;
        if (isOutputOpen && !m_lateOutput.hasExpired())
            return;
        send({Type::Ended, 0, encode(End{m_process->exitCode(), m_process->endSignal()})});
        m_isDone = true;
    }

    void endProgram() {
        if (m_process)
            endProcesses({m_runId.toStdString() + ":1", true, m_process->pid()}, endPatience);
    }

    const int m_input;
    const int m_output;
    const QString m_runId;
    QDeadlineTimer m_sinceSign;
    bool m_isInputOpen = true;
    bool m_isDone = false;
    Inbox m_inbox;
    QByteArray m_queued;
    // In this order: the watch clears up behind everything else.
    RunWatch m_watch;
    PrivateFolder m_folder;
    PrivateDisplay m_display;
    int m_listener = -1;
    quint32 m_lastLink = 0;
    Links m_links;
    OutputPipe m_standardOutput;
    OutputPipe m_standardError;
    std::unique_ptr<ChildProcess> m_process;
    QDeadlineTimer m_lateOutput{QDeadlineTimer::Forever};
};

/// The value that the program gets, of its own environment or of this process.
QString valueFor(const ProgramStart& program, const QString& name) {
    for (const auto& [each, value] : program.environment) {
        if (each == name)
            return value;
    }
    return Environment::getVariable(name);
}

Outcome<> Relayed::startDisplay(ProgramStart* program) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!valueFor(*program, QLatin1String(name)).isEmpty())
            return {};
    }
    const Outcome<> started = m_display.start(m_runId, m_folder.path());
    program->environment = m_display.environment() + program->environment;
    return started;
}

Outcome<> Relayed::start(const QByteArray& bytes) {
    Start wanted;
    if (m_process || !decode(bytes, &wanted))
        return fail(FailureKind::Failed, QStringLiteral("what is to be started is not understood"));
    Outcome<ApplicationStart> resolved = resolveApplication(quotedShellWords(wanted.words), {});
    if (!resolved)
        return fail(resolved.error());
    const Launcher* const launcher = Launcher::find(wanted.hook);
    if (!launcher)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("there is no hook '%1'").arg(wanted.hook));
    // What a killed relay has left goes first.
    clearLeftFolders();
    if (const Outcome<> made = m_folder.make(m_runId); !made)
        return made;
    m_watch.start(m_runId, m_folder.path());
    const QString socket = m_folder.path() + QLatin1String("/agents");
    const Outcome<int> listener = Wire::listenLocalSocket(socket);
    if (!listener)
        return fail(listener.error());
    m_listener = *listener;

    ProgramStart program = resolved->program;
    program.workingDirectory = wanted.workingDirectory;
    program.environment = wanted.environment;
    if (const Outcome<> shown = startDisplay(&program); !shown)
        return shown;
    launcher->prepare(&program, {socket, wanted.token});
    program.mark = m_runId + QLatin1String(":1");
    // The program writes to where this process does, for the moment of its start.
    program.keepsOutput = false;
    const int errors = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    ::dup2(m_standardOutput.ends[1], STDOUT_FILENO);
    ::dup2(m_standardError.ends[1], STDERR_FILENO);
    Outcome<std::unique_ptr<ChildProcess>> process = ChildProcess::start(program);
    ::dup2(errors, STDERR_FILENO);
    ::dup2(errors, STDOUT_FILENO);
    ::close(errors);
    for (OutputPipe* pipe : {&m_standardOutput, &m_standardError})
        ::close(std::exchange(pipe->ends[1], -1));
    if (!process)
        return fail(process.error());
    m_process = std::move(*process);
    return {};
}

}  // namespace

int runRelay(int input, int output) {
    for (const int descriptor : {input, output})
        ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    return Relayed(input, output).run();
}

}  // namespace Tamrix::Relay
