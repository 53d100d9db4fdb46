#include "runner/attachable.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QHash>
#include <QRegularExpression>
#include <array>

#include "runner/agentserver.h"
#include "runner/applicationstart.h"
#include "runner/interrupt.h"
#include "runner/runwatch.h"
#include "runner/shellwords.h"
#include "runner/startedprogram.h"
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

bool isGoodName(const QString& name) {
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z0-9._-]{1,40}\\z"));
    return form.match(name).hasMatch();
}

/// The user's folder for sockets of kept programs, made when it is not there. Empty with `*error`
/// set when it can't be trusted.
QString attachableFolder(QString* error) {
    const QString runtime = QString::fromLocal8Bit(qgetenv("XDG_RUNTIME_DIR"));
    const QString folder = runtime.isEmpty()
                               ? QStringLiteral("%1/tamrix-attachable-%2")
                                     .arg(QDir::tempPath(), QString::number(::getuid()))
                               : runtime + QLatin1String("/tamrix-attachable");
    const QByteArray path = folder.toLocal8Bit();
    ::mkdir(path.constData(), S_IRWXU);
    struct stat info {};
    if (::lstat(path.constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
        info.st_uid == ::getuid() && (info.st_mode & (S_IRWXG | S_IRWXO)) == 0)
        return folder;
    *error = QStringLiteral("'%1' is not a folder that only this user can enter").arg(folder);
    return {};
}

QString socketOf(const QString& name, QString* error) {
    if (!isGoodName(name)) {
        *error = QStringLiteral(
                     "'%1' is no name for an attachable program: letters, digits, '.', '_' and '-'")
                     .arg(name);
        return {};
    }
    const QString folder = attachableFolder(error);
    return folder.isEmpty() ? QString() : QStringLiteral("%1/%2.sock").arg(folder, name);
}

/// A listening socket with its file, which goes with the object.
class Listener {
public:
    ~Listener() {
        if (m_descriptor < 0)
            return;
        ::close(m_descriptor);
        ::unlink(m_path.toLocal8Bit().constData());
    }
    Listener() = default;
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    bool listen(const QString& path, QString* error) {
        m_path = path;
        m_descriptor = Wire::listenLocalSocket(path, error);
        return m_descriptor >= 0;
    }
    int descriptor() const { return m_descriptor; }

private:
    QString m_path;
    int m_descriptor = -1;
};

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
    /// Takes what has come from both sides. False when the agent has gone.
    bool work();
    int agentDescriptor() const { return m_agent ? m_agent->descriptor() : -1; }
    int runDescriptor() const { return m_run ? m_run->descriptor() : -1; }

private:
    void workOnAgent();
    void workOnRun();

    QString m_token;
    QString m_refusal;
    std::unique_ptr<FrameChannel> m_agent;
    std::unique_ptr<FrameChannel> m_run;
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
        const bool isEvent = frame->type == MessageType::EventFired;
        const auto request = m_open.constFind(frame->sequence);
        if (!m_run || !m_isWelcome || (!isEvent && request == m_open.constEnd()))
            continue;
        m_run->send(isEvent ? 0 : *request, frame->type, frame->body);
        m_open.remove(frame->sequence);
    }
}

void Keeper::workOnRun() {
    m_run->receive();
    while (const std::optional<Frame> frame = m_run->takeFrame()) {
        if (frame->type == MessageType::Welcome) {
            m_isWelcome = true;
            continue;
        }
        m_open.insert(++m_lastSequence, frame->sequence);
        m_agent->send(m_lastSequence, frame->type, frame->body);
    }
    if (!m_run->isOpen())
        m_run.reset();
}

bool Keeper::work() {
    if (m_agent)
        workOnAgent();
    if (m_run && m_agent)
        workOnRun();
    return !m_agent || m_agent->isOpen();
}

/// Listens at a socket, or takes the place of a keeper that was killed.
bool listenForRuns(const QString& name, Listener& listener, QString* error) {
    const QString path = socketOf(name, error);
    if (path.isEmpty())
        return false;
    QString ignored;
    const int other = Wire::connectLocalSocket(path, &ignored);
    if (other >= 0) {
        ::close(other);
        *error = QStringLiteral("a program named '%1' is attachable already").arg(name);
        return false;
    }
    ::unlink(path.toLocal8Bit().constData());
    return listener.listen(path, error);
}

void acceptOn(const pollfd& listener, Keeper& keeper, void (Keeper::*add)(int)) {
    if ((listener.revents & POLLIN) == 0)
        return;
    const int descriptor = ::accept4(listener.fd, nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor >= 0)
        (keeper.*add)(descriptor);
}

/// Works until the program has ended, the process is interrupted, or no agent came.
void keep(StartedProgram& program, Keeper& keeper, const Listener& agents, const Listener& runs,
          QString* error) {
    const QDeadlineTimer deadline(connectTimeout);
    while (program.isAlive() && Interrupt::signalNumber() == 0) {
        std::array<pollfd, 4> watched{{{agents.descriptor(), POLLIN, 0},
                                       // Runs come in only when there is an agent for them.
                                       {keeper.hasAgent() ? runs.descriptor() : -1, POLLIN, 0},
                                       {keeper.agentDescriptor(), POLLIN, 0},
                                       {keeper.runDescriptor(), POLLIN, 0}}};
        ::poll(watched.data(), watched.size(), pollInterval);
        acceptOn(watched[0], keeper, &Keeper::addAgent);
        acceptOn(watched[1], keeper, &Keeper::addRun);
        if (!keeper.work())
            program.process().waitForEnd(endPatience);
        if (!keeper.hasAgent() && deadline.hasExpired()) {
            *error = QStringLiteral("no agent in '%1' connected within %2 ms%3")
                         .arg(program.start().name, QString::number(connectTimeout),
                              keeper.refusal().isEmpty() ? QString()
                                                         : QStringLiteral(": ") + keeper.refusal());
            return;
        }
    }
}

}  // namespace

int keepAttachable(const AttachableOptions& options, QString* error) {
    Listener runs;
    if (!listenForRuns(options.name, runs, error))
        return -1;
    QStringList words;
    for (const QString& word : options.command)
        words.append(quotedShellWord(word));
    ApplicationStart start = resolveApplication(words.join(QLatin1Char(' ')), {}, error);
    if (!error->isEmpty())
        return -1;
    const QString folder = makePrivateFolder(error);
    if (folder.isEmpty())
        return -1;

    const QString runId = randomToken();
    // Clears up behind everything else, the folder included.
    RunWatch watch;
    watch.start(runId, folder);
    Listener agents;
    if (!agents.listen(folder + QLatin1String("/agents"), error))
        return -1;
    Keeper keeper(randomToken());
    const QString mark = runId + QLatin1String(":1");
    start.program.keepsOutput = false;
    start.program.environment =
        agentEnvironment(folder + QLatin1String("/agents"), keeper.token(), start.preloadsAgent) +
        ProgramEnvironment{{QLatin1String(runMarkVariable), mark}};
    std::unique_ptr<ChildProcess> process = ChildProcess::start(start.program, error);
    if (!process)
        return -1;
    Interrupt::install();
    StartedProgram program(start, std::move(process), mark);
    keep(program, keeper, agents, runs, error);
    program.end(endPatience);
    return Interrupt::signalNumber() != 0 ? Interrupt::exitCode(Interrupt::signalNumber())
                                          : program.process().exitCode();
}

std::shared_ptr<AgentConnection> connectToAttachable(const QString& name, QString* error) {
    const QString path = socketOf(name, error);
    if (path.isEmpty())
        return nullptr;
    QString reason;
    const int descriptor = Wire::connectLocalSocket(path, &reason);
    if (descriptor < 0) {
        *error = QStringLiteral(
                     "no program named '%1' is attachable; start it with \"tamrixrunner attachable "
                     "--name %1 PROGRAM\" (%2)")
                     .arg(name, reason);
        return nullptr;
    }
    return std::make_shared<AgentConnection>(descriptor, QString());
}

}  // namespace Tamrix
