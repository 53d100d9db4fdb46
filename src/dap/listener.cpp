#include "dap/listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace Tamrix::Dap {

namespace {

tl::unexpected<Failure> systemFailure(const QString& what) {
    return fail(FailureKind::Failed, QStringLiteral("%1: %2").arg(what, qt_error_string(errno)));
}

}  // namespace

Outcome<Listener> Listener::open(int port) {
    const QString problem = QStringLiteral("can't listen on port %1").arg(port);
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return systemFailure(problem);
    Listener listener(descriptor, port);
    const int on = 1;
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    // The loopback: whoever reaches this server can run code.
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port));
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(descriptor, generic, size) != 0 || ::listen(descriptor, 1) != 0 ||
        ::getsockname(descriptor, generic, &size) != 0)
        return systemFailure(problem);
    listener.m_port = ntohs(address.sin_port);
    return listener;
}

Listener::Listener(Listener&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)), m_port(other.m_port) {}

Listener::~Listener() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

Outcome<int> Listener::accept() const {
    int connection = -1;
    do {
        connection = ::accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC);
    } while (connection < 0 && errno == EINTR);
    if (connection < 0)
        return systemFailure(QStringLiteral("no client can be accepted"));
    // Messages are small and each is waited for.
    const int on = 1;
    ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return connection;
}

}  // namespace Tamrix::Dap
