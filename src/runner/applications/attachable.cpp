#include "runner/applications/attachable.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QHash>
#include <array>

#include "runner/applications/agentserver.h"
#include "runner/applications/applicationstart.h"
#include "runner/applications/startedprogram.h"
#include "runner/applications/usersockets.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/privatefolder.h"
#include "runner/processes/runwatch.h"
#include "runner/processes/shellwords.h"
#include "wire/framechannel.h"
#include "wire/messages.h"

namespace Tamrix {

namespace {

using Wire::Frame;
using Wire::FrameChannel;
using Wire::MessageType;

constexpr int pollInterval = 100;
constexpr int connectTimeout = 20000;
constexpr int endPatience = 2000;
/// How long a run may leave an answer unread.
constexpr int readTimeout = 10000;
/// How many requests of a run are handed on before the first of them is answered.
constexpr int openLimit = 32;
/// How much may be queued for a run: less than two of the longest answers.
constexpr int queueLimit = 400 * 1024 * 1024;

/// The folder of the sockets of kept programs.
const QString& socketKind() {
    static const QString s_kind = QStringLiteral("tamrix-attachable");
    return s_kind;
}

Outcome<QString> socketOf(const QString& name) {
    return userSocketPath(socketKind(), name, QStringLiteral("an attachable program"));
}

/// Hands messages over between the agent of the kept program and one run at a time.
class Keeper {
public:
    explicit Keeper(const QString& token) : m_token(token) {}

    bool hasAgent() const { return m_agent != nullptr; }
    QString token() const { return m_token; }
    QString refusal() const { return m_refusal; }
    /// Someone connected where the agent is awaited.
    void addAgent(int descriptor);
    /// A run connected.
    void addRun(int descriptor);
    /// Takes what has come from both sides.
    void work();
    /// Why the agent that was there has gone; empty as long as it has not.
    QString agentEnd() const {
        return m_agent && !m_agent->isOpen() ? m_agent->errorText() : QString();
    }
    // What to wait for.
    pollfd agentWait() const { return waitOn(m_agent.get(), true); }
    pollfd runWait() const { return waitOn(m_run.get(), takesRequests()); }

private:
    static pollfd waitOn(const FrameChannel* side, bool reads) {
        if (!side)
            return {-1, 0, 0};
        const int events = (reads ? POLLIN : 0) | (side->hasQueued() ? POLLOUT : 0);
        return {side->descriptor(), static_cast<short>(events), 0};
    }
    /// The agent is always read, since it waits for that. A run is read as long as the agent takes
    /// its requests, and the run the answers.
    bool takesRequests() const {
        return m_run && m_agent && m_open.size() < openLimit && !m_agent->hasQueued() &&
               !m_run->hasQueued();
    }
    void workOnAgent();
    void workOnRun();
    void dropIdleRun();

    QString m_token;
    QString m_refusal;
    std::unique_ptr<FrameChannel> m_agent;
    std::unique_ptr<FrameChannel> m_run;
    /// By when the run has to have read something of what is queued for it.
    QDeadlineTimer m_runReads{QDeadlineTimer::Forever};
    Wire::Hello m_hello;
    bool m_isWelcome = false;
    quint32 m_lastSequence = 0;
    /// The sequence numbers of the current run's requests, by that on the agent's side. An answer
    /// that is not in here belongs to a run that went away.
    QHash<quint32, quint32> m_open;
};

void Keeper::addAgent(int descriptor) {
    auto channel = std::make_unique<FrameChannel>(descriptor);
    channel->setMaximalBodySize(Wire::maximalHelloSize);
    const QDeadlineTimer deadline(AgentServer::helloTimeout);
    std::optional<Frame> frame;
    while (!(frame = channel->takeFrame()) && channel->isOpen() && !deadline.hasExpired()) {
        pollfd waiting{channel->descriptor(), POLLIN, 0};
        ::poll(&waiting, 1, static_cast<int>(deadline.remainingTime()));
        channel->receive();
    }
    Wire::Hello hello;
    if (!frame || frame->type != MessageType::Hello || !Wire::decode(frame->body, &hello) ||
        hello.magic != Wire::magicNumber) {
        m_refusal = QStringLiteral("the other side is no agent");
    } else if (hello.version != Wire::protocolVersion) {
        m_refusal =
            QStringLiteral(
                "the agent in the application speaks version %1 of the protocol, this "
                "program version %2")
                .arg(QString::number(hello.version), QString::number(Wire::protocolVersion));
    } else if (hello.token != m_token) {
        m_refusal = QStringLiteral("the agent shows a wrong token");
    } else if (m_agent) {
        m_refusal = QStringLiteral("another process of the program is connected");
    } else {
        channel->setMaximalBodySize(Wire::maximalBodySize);
        channel->setLongAnswersFail(true);
        channel->send(0, MessageType::Welcome, {});
        m_hello = hello;
        // A run does not know the token, and has shown that it may come in by reaching the socket.
        m_hello.token.clear();
        m_agent = std::move(channel);
        return;
    }
    channel->sendBody(0, MessageType::Refusal, Wire::Text{m_refusal});
}

void Keeper::addRun(int descriptor) {
    auto channel = std::make_unique<FrameChannel>(descriptor);
    if (m_run && m_run->isOpen()) {
        channel->sendBody(0, MessageType::Refusal,
                          Wire::Text{QStringLiteral("another run is attached")});
        return;
    }
    m_open.clear();
    m_isWelcome = false;
    m_run = std::move(channel);
    m_run->sendBody(0, MessageType::Hello, m_hello);
}

void Keeper::workOnAgent() {
    m_agent->receive();
    while (const std::optional<Frame> frame = m_agent->takeFrame()) {
        const bool isEvent =
            frame->type == MessageType::EventFired || frame->type == MessageType::Observed;
        const auto request = m_open.constFind(frame->sequence);
        if (!m_run || !m_isWelcome || (!isEvent && request == m_open.constEnd()))
            continue;
        m_run->enqueue(isEvent ? 0 : *request, frame->type, frame->body);
        m_open.remove(frame->sequence);
    }
}

void Keeper::workOnRun() {
    if (takesRequests())
        m_run->receive();
    while (takesRequests()) {
        const std::optional<Frame> frame = m_run->takeFrame();
        if (!frame)
            break;
        if (frame->type == MessageType::Welcome) {
            m_isWelcome = true;
            continue;
        }
        m_open.insert(++m_lastSequence, frame->sequence);
        m_agent->enqueue(m_lastSequence, frame->type, frame->body);
    }
}

/// The next run need not wait for one that has gone, or takes no answers.
void Keeper::dropIdleRun() {
    if (!m_run->hasQueued())
        m_runReads.setRemainingTime(-1);
    else if (m_runReads.isForever())
        m_runReads.setRemainingTime(readTimeout);
    if (m_run->isOpen() && !m_runReads.hasExpired() && m_run->queuedSize() < queueLimit)
        return;
    m_run.reset();
    m_open.clear();
    m_runReads.setRemainingTime(-1);
}

void Keeper::work() {
    if (!m_agent)
        return;
    m_agent->flush();
    if (m_run)
        m_run->flush();
    workOnAgent();
    if (!m_run)
        return;
    workOnRun();
    dropIdleRun();
}

/// Listens at a socket, or takes the place of a keeper that was killed.
Outcome<> listenForRuns(const QString& name, UserSocketListener& listener) {
    const Outcome<QString> path = socketOf(name);
    if (!path)
        return fail(path.error());
    Outcome<> listening = listener.takeOver(*path);
    if (!listening && listening.error().kind == FailureKind::Refused)
        return fail(FailureKind::Refused,
                    QStringLiteral("a program named '%1' is attachable already").arg(name));
    return listening;
}

void acceptOn(const pollfd& listener, Keeper& keeper, void (Keeper::*add)(int)) {
    if ((listener.revents & POLLIN) == 0)
        return;
    const int descriptor = ::accept4(listener.fd, nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor >= 0)
        (keeper.*add)(descriptor);
}

/// Works until the program has ended or the process is interrupted. Fails when no agent came, or
/// it went.
Outcome<> keep(StartedProgram& program, Keeper& keeper, const UserSocketListener& agents,
               const UserSocketListener& runs) {
    const QDeadlineTimer deadline(connectTimeout);
    const QString name = program.start().name;
    while (program.isAlive() && Interrupt::signalNumber() == 0) {
        std::array<pollfd, 4> watched{{{agents.descriptor(), POLLIN, 0},
                                       // Runs come in only when there is an agent for them.
                                       {keeper.hasAgent() ? runs.descriptor() : -1, POLLIN, 0},
                                       keeper.agentWait(),
                                       keeper.runWait()}};
        ::poll(watched.data(), watched.size(), pollInterval);
        acceptOn(watched[0], keeper, &Keeper::addAgent);
        acceptOn(watched[1], keeper, &Keeper::addRun);
        keeper.work();
        // A program that ends closes its connection first.
        const QString end = keeper.agentEnd();
        if (!end.isEmpty() && !program.process().waitForEnd(endPatience)) {
            return fail(FailureKind::Ended,
                        QStringLiteral("the agent in '%1' is lost: %2").arg(name, end));
        }
        if (!keeper.hasAgent() && deadline.hasExpired()) {
            const QString reason =
                keeper.refusal().isEmpty() ? QString() : QStringLiteral(": ") + keeper.refusal();
            return fail(FailureKind::TimedOut,
                        QStringLiteral("no agent in '%1' connected within %2 ms%3")
                            .arg(name, QString::number(connectTimeout), reason));
        }
    }
    return {};
}

}  // namespace

Outcome<int> keepAttachable(const AttachableOptions& options) {
    UserSocketListener runs;
    if (const Outcome<> listening = listenForRuns(options.name, runs); !listening)
        return fail(listening.error());
    Outcome<ApplicationStart> start = resolveApplication(quotedShellWords(options.command), {});
    if (!start)
        return fail(start.error());
    const QString runId = randomToken();
    // Clears up behind everything else, the folder included.
    RunWatch watch;
    PrivateFolder folder;
    clearLeftFolders();
    clearLeftSockets();
    if (const Outcome<> made = folder.make(runId); !made)
        return fail(made.error());
    watch.start(runId, folder.path());
    const QString socket = folder.path() + QLatin1String("/agents");
    UserSocketListener agents;
    if (const Outcome<> listening = agents.listen(socket); !listening)
        return fail(listening.error());
    Keeper keeper(randomToken());
    start->program.keepsOutput = false;
    start->launcher->prepare(&start->program, {socket, keeper.token()});
    start->program.mark = runId + QLatin1String(":1");
    Outcome<std::unique_ptr<ChildProcess>> process = ChildProcess::start(start->program);
    if (!process)
        return fail(process.error());
    Interrupt::install();
    StartedProgram program(*start, std::move(*process));
    const Outcome<> kept = keep(program, keeper, agents, runs);
    program.end(endPatience);
    if (!kept)
        return fail(kept.error());
    return Interrupt::signalNumber() != 0 ? Interrupt::exitCode(Interrupt::signalNumber())
                                          : program.process().exitCode();
}

void clearLeftSockets() {
    clearLeftUserSockets(socketKind());
}

Outcome<std::shared_ptr<AgentConnection>> connectToAttachable(const QString& name) {
    const Outcome<QString> path = socketOf(name);
    if (!path)
        return fail(path.error());
    const Outcome<int> descriptor = Wire::connectLocalSocket(*path);
    if (!descriptor) {
        return fail(
            FailureKind::NotFound,
            QStringLiteral(
                "no program named '%1' is attachable; start it with \"tamrixrunner attachable "
                "--name %1 PROGRAM\" (%2)")
                .arg(name, descriptor.error().text));
    }
    return std::make_shared<AgentConnection>(*descriptor, QString());
}

}  // namespace Tamrix
