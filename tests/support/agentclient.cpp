#include "support/agentclient.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QThread>
#include <csignal>
#include <vector>

namespace Tamrix {

QString hookPreload() {
    return TAMRIX_TEST_PREFIX "/lib/libtamrixhook.so:" + qEnvironmentVariable("LD_PRELOAD");
}

namespace {

constexpr char token[] = "token-of-a-test";

QMap<QString, QString> environmentFor(WayIn wayIn, const QString& socket) {
    const QString prefix = TAMRIX_TEST_PREFIX;
    QMap<QString, QString> variables = {{"TAMRIX_PREFIX", prefix},
                                        {"QT_QPA_PLATFORM", "offscreen"},
                                        {Wire::connectVariable, socket},
                                        {Wire::tokenVariable, token}};
    if (wayIn == WayIn::Plugin) {
        variables.insert("QT_PLUGIN_PATH", prefix + "/lib/qtplugins");
        variables.insert("QT_QPA_GENERIC_PLUGINS", "tamrixagent");
    } else {
        variables.insert("LD_PRELOAD", hookPreload());
    }
    return variables;
}

/// In the child after the fork: never returns.
[[noreturn]] void becomeProgram(const QByteArray& program, const QStringList& arguments,
                                const QMap<QString, QString>& environment,
                                const QByteArray& errorFile) {
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        qputenv(it.key().toLocal8Bit().constData(), it.value().toLocal8Bit());
    const int errors = ::open(errorFile.constData(), O_CREAT | O_WRONLY | O_APPEND, 0600);
    ::dup2(errors, 2);
    std::vector<QByteArray> texts{program};
    for (const QString& argument : arguments)
        texts.push_back(argument.toLocal8Bit());
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    ::execvp(program.constData(), pointers.data());
    ::_exit(127);
}

bool isReadable(int descriptor, int timeout) {
    pollfd waiting{descriptor, POLLIN, 0};
    return ::poll(&waiting, 1, timeout) > 0;
}

}  // namespace

Wire::Query makeQuery(const QStringList& criteria, int occurrence) {
    Wire::Query query;
    query.occurrence = occurrence;
    for (const QString& each : criteria) {
        const int equals = each.indexOf('=');
        Wire::Criterion criterion;
        criterion.property = each.left(equals);
        criterion.text = each.mid(equals + 1);
        if (criterion.property.endsWith('*') || criterion.property.endsWith('~')) {
            criterion.modifier = criterion.property.endsWith('*') ? 1 : 2;
            criterion.property.chop(1);
        }
        query.criteria.append(criterion);
    }
    return query;
}

AgentClient::AgentClient(const QString& program, const QStringList& arguments, WayIn wayIn,
                         const QMap<QString, QString>& environment) {
    m_listener = Wire::listenLocalSocket(socketPath()).value_or(-1);
    const QString path = program.contains('/')
                             ? program
                             : QStringLiteral(TAMRIX_TEST_PREFIX "/tests/targets/") + program;
    QMap<QString, QString> variables = environmentFor(wayIn, socketPath());
    // Qt would tell on standard error that it makes one of its own.
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        variables.insert("XDG_RUNTIME_DIR", m_folder.path());
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        variables.insert(it.key(), it.value());
    const QByteArray errorFile = m_folder.filePath("stderr").toLocal8Bit();
    m_pid = ::fork();
    if (m_pid == 0)
        becomeProgram(path.toLocal8Bit(), arguments, variables, errorFile);
}

AgentClient::~AgentClient() {
    if (m_pid > 0 && m_status == -1) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    ::close(m_listener);
}

bool AgentClient::acceptHello(int timeout) {
    m_channel.reset();
    if (!isReadable(m_listener, timeout))
        return false;
    m_channel =
        std::make_unique<Wire::FrameChannel>(::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC));
    const std::optional<Wire::Frame> frame = nextFrame(timeout);
    return frame && frame->type == Wire::MessageType::Hello &&
           Wire::decode(frame->body, &m_hello) && m_hello.token == token;
}

bool AgentClient::accept(int timeout) {
    return acceptHello(timeout) && m_channel->send(0, Wire::MessageType::Welcome, QByteArray());
}

std::optional<Wire::Frame> AgentClient::nextFrame(int timeout) {
    QElapsedTimer timer;
    timer.start();
    while (m_channel) {
        if (std::optional<Wire::Frame> frame = m_channel->takeFrame())
            return frame;
        const int left = timeout - static_cast<int>(timer.elapsed());
        if (!m_channel->isOpen() || left <= 0 || !isReadable(m_channel->descriptor(), left))
            break;
        m_channel->receive();
    }
    return std::nullopt;
}

std::optional<Wire::Frame> AgentClient::exchange(Wire::MessageType type, const QByteArray& body) {
    if (!m_channel || !m_channel->send(++m_sequence, type, body))
        return std::nullopt;
    while (std::optional<Wire::Frame> frame = nextFrame()) {
        if (frame->sequence == m_sequence)
            return frame;
        Wire::EventFired event;
        if (frame->type == Wire::MessageType::EventFired && Wire::decode(frame->body, &event))
            m_events.append(event);
        Wire::Observation observation;
        if (frame->type == Wire::MessageType::Observed && Wire::decode(frame->body, &observation))
            m_observations.append(observation);
    }
    return std::nullopt;
}

QList<Wire::Observation> AgentClient::takeObservations() {
    return std::exchange(m_observations, {});
}

QList<Wire::EventFired> AgentClient::takeEvents() {
    return std::exchange(m_events, {});
}

bool AgentClient::isReply(const std::optional<Wire::Frame>& frame) {
    m_failure = Wire::Failure();
    if (!frame) {
        m_failure.text = QStringLiteral("no answer");
        return false;
    }
    if (frame->type == Wire::MessageType::Failure)
        Wire::decode(frame->body, &m_failure);
    return frame->type == Wire::MessageType::Reply;
}

Wire::ObjectInfo AgentClient::find(const QStringList& criteria, int occurrence) {
    Wire::LookUp lookUp;
    lookUp.query = makeQuery(criteria, occurrence);
    return request<Wire::LookUpResult>(Wire::MessageType::LookUp, lookUp).object;
}

QVariant AgentClient::read(const Wire::ObjectInfo& object, const QString& property) {
    Wire::PropertyAccess access;
    access.handle = object.handle;
    access.name = property;
    return request<Wire::Value>(Wire::MessageType::ReadProperty, access).value;
}

QVariant AgentClient::invoke(const Wire::ObjectInfo& object, const QString& method,
                             const QVariantList& arguments) {
    Wire::Invoke call;
    call.handle = object.handle;
    call.method = method;
    call.arguments = arguments;
    return request<Wire::Value>(Wire::MessageType::Invoke, call).value;
}

int AgentClient::waitForEnd(int timeout) {
    QElapsedTimer timer;
    timer.start();
    while (m_status == -1 && timer.elapsed() < timeout) {
        int status = 0;
        if (::waitpid(m_pid, &status, WNOHANG) == m_pid)
            m_status = status;
        else
            QThread::msleep(5);
    }
    return m_status;
}

QString AgentClient::errorOutput() const {
    QFile file(m_folder.filePath("stderr"));
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
}

}  // namespace Tamrix
