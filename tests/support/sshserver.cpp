#include "support/sshserver.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <vector>

#include "support/files.h"
#include "support/printqt.h"
#include "support/waituntil.h"

namespace Tamrix::Test {

namespace {

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

/// A socket that listens at a free port.
int listenSomewhere(int* port) {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof(address);
    EXPECT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(::listen(listener, 16), 0);
    EXPECT_EQ(::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    *port = ntohs(address.sin_port);
    return listener;
}

/// -1 when nobody listens.
int connectTo(int port) {
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(port);
    if (::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0) {
        const int on = 1;
        ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
        return descriptor;
    }
    ::close(descriptor);
    return -1;
}

void makeKey(const QString& path) {
    EXPECT_EQ(QProcess::execute("ssh-keygen", {"-q", "-t", "ed25519", "-N", "", "-f", path}), 0);
}

}  // namespace

SshServer::SshServer(const QString& configuration) {
    const QString ssh = m_folder.filePath(".ssh");
    EXPECT_TRUE(QDir().mkpath(ssh));
    ::chmod(ssh.toLocal8Bit().constData(), 0700);
    makeKey(ssh + "/id_ed25519");
    makeKey(m_folder.filePath("hostkey"));
    EXPECT_TRUE(QFile::copy(ssh + "/id_ed25519.pub", ssh + "/authorized_keys"));
    // The server, run by root, wants it.
    if (::geteuid() == 0)
        QDir().mkpath("/run/sshd");
    QString settings = QStringLiteral(
                           "ListenAddress 127.0.0.1\nHostKey %1/hostkey\n"
                           "AuthorizedKeysFile %1/.ssh/authorized_keys\nStrictModes no\nUsePAM no\n"
                           "PidFile none\nPermitRootLogin yes\nPasswordAuthentication no\n"
                           "KbdInteractiveAuthentication no\nUseDNS no\n"
                           "Subsystem sftp /usr/lib/openssh/sftp-server\n%2\n")
                           .arg(m_folder.path(), configuration);
    // How programs with checks behave, which a server keeps from those that it starts.
    QString checks;
    for (const char* const name : {"ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            checks += QString(" %1=%2").arg(name, qEnvironmentVariable(name));
    }
    if (!checks.isEmpty())
        settings += "SetEnv" + checks + '\n';
    EXPECT_TRUE(writeFile(m_folder.filePath("sshd_config"), settings.toLocal8Bit()));
    m_home.emplace("HOME", m_folder.path());
    m_process.setStandardErrorFile(m_folder.filePath("log"));
    // Somebody else may take the port that was free before the server has it.
    constexpr int tries = 20;
    bool isListening = false;
    for (int count = 0; count < tries && !isListening; ++count)
        isListening = listen();
    EXPECT_TRUE(isListening) << qPrintable(log());
    makeKnown(m_port, hostKey());
}

bool SshServer::listen() {
    const int reserved = listenSomewhere(&m_port);
    ::close(reserved);
    const QString port = QString::number(m_port);
    m_process.start("/usr/sbin/sshd",
                    {"-D", "-e", "-f", m_folder.filePath("sshd_config"), "-p", port});
    EXPECT_TRUE(m_process.waitForStarted()) << "openssh-server is not installed";
    const QString told = QStringLiteral("Server listening on 127.0.0.1 port %1.").arg(port);
    return waitUntil([&] {
               return log().contains(told) || m_process.waitForFinished(0) ||
                      m_process.state() == QProcess::NotRunning;
           }) &&
           log().contains(told);
}

SshServer::~SshServer() {
    m_process.terminate();
    if (!m_process.waitForFinished())
        m_process.kill();
    m_process.waitForFinished();
}

QByteArray SshServer::hostKey() const {
    return readFile(m_folder.filePath("hostkey.pub"));
}

void SshServer::makeKnown(int port, const QByteArray& key) {
    QFile file(m_folder.filePath(".ssh/known_hosts"));
    EXPECT_TRUE(file.open(QIODevice::Append));
    file.write("[127.0.0.1]:" + QByteArray::number(port) + ' ' + key.trimmed() + '\n');
}

QString SshServer::log() const {
    return QString::fromLocal8Bit(readFile(m_folder.filePath("log")));
}

FailingNetwork::FailingNetwork(int serverPort) : m_serverPort(serverPort) {
    m_listener = listenSomewhere(&m_port);
    m_thread = std::thread([this] { work(); });
}

FailingNetwork::~FailingNetwork() {
    m_isEnding = true;
    m_thread.join();
    ::close(m_listener);
}

void FailingNetwork::cutAfter(qint64 bytes) {
    m_left = bytes;
}

bool FailingNetwork::pass(int from, int to) {
    std::array<char, 16384> buffer;
    auto size = ::recv(from, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (size < 0)
        return errno == EAGAIN;
    if (size == 0)
        return false;
    const qint64 left = m_left;
    if (left >= 0)
        size = std::min<ssize_t>(size, left);
    for (ssize_t sent = 0; sent < size;) {
        const ssize_t count =
            ::send(to, buffer.data() + sent, static_cast<size_t>(size - sent), MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        sent += count;
    }
    if (left >= 0)
        m_left = left - size;
    return m_left != 0;
}

void FailingNetwork::work() {
    struct Link {
        int client;
        int server;
    };
    std::vector<Link> links;
    while (!m_isEnding) {
        std::vector<pollfd> watched{{m_listener, POLLIN, 0}};
        for (const Link& link : links) {
            watched.push_back({link.client, POLLIN, 0});
            watched.push_back({link.server, POLLIN, 0});
        }
        ::poll(watched.data(), m_isFrozen ? 0 : watched.size(), 10);
        if (m_isFrozen)
            continue;
        for (size_t index = links.size(); index-- > 0;) {
            const Link link = links[index];
            const bool isUp =
                (watched[2 * index + 1].revents == 0 || pass(link.client, link.server)) &&
                (watched[2 * index + 2].revents == 0 || pass(link.server, link.client));
            if (isUp)
                continue;
            ::close(link.client);
            ::close(link.server);
            links.erase(links.begin() + static_cast<std::ptrdiff_t>(index));
        }
        if (watched[0].revents != 0) {
            const int client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            links.push_back({client, connectTo(m_serverPort)});
        }
    }
    for (const Link& link : links) {
        ::close(link.client);
        ::close(link.server);
    }
}

}  // namespace Tamrix::Test
