#include "runner/agentserver.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QRandomGenerator>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "wire/framechannel.h"

namespace Tamrix {

namespace {

/// Longest path of a folder in which a socket's name still fits into an address.
constexpr int maximalFolderLength = 80;

}  // namespace

QString randomToken() {
    std::array<quint32, 4> numbers{};
    QRandomGenerator::system()->fillRange(numbers.data(), static_cast<int>(numbers.size()));
    QString token;
    for (const quint32 number : numbers)
        token += QStringLiteral("%1").arg(number, 8, 16, QLatin1Char('0'));
    return token;
}

QString makePrivateFolder(QString* error) {
    const QStringList places = {QString::fromLocal8Bit(qgetenv("XDG_RUNTIME_DIR")),
                                QDir::tempPath(), QStringLiteral("/tmp")};
    QString reason;
    for (const QString& place : places) {
        QByteArray name = (place + QLatin1String("/tamrix-XXXXXX")).toLocal8Bit();
        if (place.isEmpty() || name.size() > maximalFolderLength)
            continue;
        // Made with mode 0700.
        if (::mkdtemp(name.data()))
            return QString::fromLocal8Bit(name);
        reason = QStringLiteral("%1: %2").arg(place, QString::fromLocal8Bit(std::strerror(errno)));
    }
    *error = QStringLiteral("no folder for the agents' socket can be made (%1)").arg(reason);
    return {};
}

AgentServer::AgentServer() : m_token(randomToken()) {}

AgentServer::~AgentServer() {
    if (m_listener >= 0)
        ::close(m_listener);
    // With what programs left there.
    if (!m_folder.isEmpty())
        QDir(m_folder).removeRecursively();
}

QString AgentServer::socketPath() const {
    return m_folder + QLatin1String("/agents");
}

bool AgentServer::listen(QString* error) {
    if (m_listener >= 0)
        return true;
    if (m_folder.isEmpty())
        m_folder = makePrivateFolder(error);
    if (m_folder.isEmpty())
        return false;
    m_listener = Wire::listenLocalSocket(socketPath(), error);
    return m_listener >= 0;
}

void AgentServer::work() {
    if (m_listener < 0)
        return;
    acceptPeers();
    const auto isDone = [this](Peer& peer) { return readPeer(peer); };
    m_peers.erase(std::remove_if(m_peers.begin(), m_peers.end(), isDone), m_peers.end());
}

void AgentServer::acceptPeers() {
    for (;;) {
        // The listening socket itself may block: look first.
        pollfd waiting{m_listener, POLLIN, 0};
        if (::poll(&waiting, 1, 0) <= 0)
            return;
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            return;
        Peer peer{std::make_shared<AgentConnection>(descriptor, m_token), {}};
        peer.sinceConnect.start();
        m_peers.push_back(std::move(peer));
    }
}

bool AgentServer::readPeer(Peer& peer) {
    switch (peer.connection->pump()) {
        case AgentConnection::State::Open:
            m_accepted.push_back(std::move(peer.connection));
            return true;
        case AgentConnection::State::Closed:
            m_refusal = peer.connection->errorText();
            return true;
        case AgentConnection::State::Greeting:
            break;
    }
    if (peer.sinceConnect.elapsed() <= helloTimeout)
        return false;
    m_refusal =
        QStringLiteral("a connection was made, but no hello came within %1 ms").arg(helloTimeout);
    return true;
}

std::vector<std::shared_ptr<AgentConnection>> AgentServer::takeAccepted() {
    return std::exchange(m_accepted, {});
}

QString AgentServer::takeRefusal() {
    return std::exchange(m_refusal, {});
}

}  // namespace Tamrix
