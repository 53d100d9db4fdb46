#include "runner/applications/agentserver.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QRandomGenerator>
#include <algorithm>
#include <array>
#include <utility>

#include "wire/framechannel.h"

namespace Tamrix {

namespace {

/// The process at the other end of a local socket.
pid_t peerOf(int descriptor) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : -1;
}

}  // namespace

QString randomToken() {
    std::array<quint32, 4> numbers{};
    QRandomGenerator::system()->fillRange(numbers.data(), static_cast<int>(numbers.size()));
    QString token;
    for (const quint32 number : numbers)
        token += QStringLiteral("%1").arg(number, 8, 16, QLatin1Char('0'));
    return token;
}

AgentServer::AgentServer(const QString& runId) : m_runId(runId), m_token(randomToken()) {}

AgentServer::~AgentServer() {
    if (m_listener >= 0)
        ::close(m_listener);
}

QString AgentServer::socketPath() const {
    return folder() + QLatin1String("/agents");
}

Outcome<> AgentServer::listen() {
    if (m_listener >= 0)
        return {};
    if (const Outcome<> made = m_folder.make(m_runId); !made)
        return made;
    const Outcome<int> listener = Wire::listenLocalSocket(socketPath());
    if (!listener)
        return fail(listener.error());
    m_listener = *listener;
    return {};
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
        Peer peer{std::make_shared<AgentConnection>(descriptor, m_token), peerOf(descriptor), {}};
        peer.sinceConnect.start();
        m_peers.push_back(std::move(peer));
    }
}

bool AgentServer::readPeer(Peer& peer) {
    switch (peer.connection->pump()) {
        case AgentConnection::State::Open:
            m_accepted.push_back({std::move(peer.connection), peer.process});
            return true;
        case AgentConnection::State::Closed:
            m_refusal = {peer.process, peer.connection->errorText(), peer.connection->isRefused()};
            return true;
        case AgentConnection::State::Greeting:
            break;
    }
    if (peer.sinceConnect.elapsed() <= helloTimeout)
        return false;
    m_refusal = {
        peer.process,
        QStringLiteral("a connection was made, but no hello came within %1 ms").arg(helloTimeout),
        false};
    return true;
}

std::vector<AgentServer::Accepted> AgentServer::takeAccepted() {
    return std::exchange(m_accepted, {});
}

AgentServer::Refusal AgentServer::takeRefusal() {
    return std::exchange(m_refusal, {});
}

}  // namespace Tamrix
