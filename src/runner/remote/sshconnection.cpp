#include "runner/remote/sshconnection.h"

#include <libssh/libssh.h>
#include <libssh/server.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <QStringList>
#include <algorithm>

#include "base/blocking.h"
#include "base/environment.h"
#include "base/nativebytes.h"

namespace Tamrix {

namespace {

// In this order: what processors do by themselves comes first.
constexpr const char* ciphers =
    "aes128-gcm@openssh.com,aes256-gcm@openssh.com,chacha20-poly1305@openssh.com,"
    "aes256-ctr,aes192-ctr,aes128-ctr";

/// Frees what the library hands out.
struct FreeText {
    void operator()(char* text) const { ssh_string_free_char(text); }
};
using LibraryText = std::unique_ptr<char, FreeText>;

struct FreeKey {
    void operator()(ssh_key key) const { ssh_key_free(key); }
};

/// "SHA256:..." of the server's key; empty when it can't be told.
QString fingerprint(ssh_session session) {
    ssh_key raw = nullptr;
    if (ssh_get_server_publickey(session, &raw) != SSH_OK)
        return {};
    const std::unique_ptr<ssh_key_struct, FreeKey> key(raw);
    unsigned char* hash = nullptr;
    size_t size = 0;
    if (ssh_get_publickey_hash(key.get(), SSH_PUBLICKEY_HASH_SHA256, &hash, &size) != 0)
        return {};
    const LibraryText text(ssh_get_fingerprint_hash(SSH_PUBLICKEY_HASH_SHA256, hash, size));
    ssh_clean_pubkey_hash(&hash);
    return QStringLiteral("%1 %2").arg(
        QString::fromLatin1(ssh_key_type_to_char(ssh_key_type(key.get()))),
        QString::fromLatin1(text.get()));
}

/// What the server lets users in with: "publickey, password".
QString methodsText(int methods) {
    const QList<QPair<int, QString>> names = {
        {SSH_AUTH_METHOD_PUBLICKEY, QStringLiteral("publickey")},
        {SSH_AUTH_METHOD_PASSWORD, QStringLiteral("password")},
        {SSH_AUTH_METHOD_INTERACTIVE, QStringLiteral("keyboard-interactive")},
        {SSH_AUTH_METHOD_HOSTBASED, QStringLiteral("hostbased")},
        {SSH_AUTH_METHOD_GSSAPI_MIC, QStringLiteral("gssapi-with-mic")}};
    QStringList accepted;
    for (const auto& [method, name] : names) {
        if ((methods & method) != 0)
            accepted.append(name);
    }
    return accepted.isEmpty() ? QStringLiteral("nothing that is known here")
                              : accepted.join(QLatin1String(", "));
}

/// A dead network is noticed by the system, too.
void watchNetwork(int descriptor, int silence) {
    const int on = 1;
    ::setsockopt(descriptor, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof(on));
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_USER_TIMEOUT, &silence, sizeof(silence));
}

}  // namespace

SshConnection::SshConnection(const SshPatience& patience)
    : m_session(ssh_new()),
      m_counter(std::make_unique<ssh_counter_struct>()),
      m_patience(patience) {
    *m_counter = {};
}

SshConnection::~SshConnection() {
    if (!m_session)
        return;
    // A server that does not answer is not waited for.
    ssh_set_blocking(m_session, 0);
    ssh_disconnect(m_session);
    ssh_free(m_session);
}

Outcome<std::unique_ptr<SshConnection>> SshConnection::open(const SshTarget& target,
                                                            const SshPatience& patience) {
    std::unique_ptr<SshConnection> connection(new SshConnection(patience));
    if (!connection->m_session)
        return fail(FailureKind::Failed, QStringLiteral("the SSH library can't be used"));
    if (const Outcome<> connected = connection->connect(target); !connected)
        return fail(connected.error());
    if (const Outcome<> known = connection->checkHostKey(); !known)
        return fail(known.error());
    if (const Outcome<> letIn = connection->authenticate(); !letIn)
        return fail(letIn.error());
    ssh_set_blocking(connection->m_session, 0);
    connection->m_sinceLife.start();
    connection->m_sinceQuestion.start();
    connection->m_sinceWait.start();
    return connection;
}

QString SshConnection::lastError() const {
    return QString::fromLocal8Bit(ssh_get_error(m_session)).trimmed();
}

Outcome<> SshConnection::connect(const SshTarget& target) {
    // 1. What the user has configured; a folder of settings that HOME names counts as for others.
    const QString home = Environment::getVariable(QStringLiteral("HOME"));
    if (!home.isEmpty())
        ssh_options_set(m_session, SSH_OPTIONS_SSH_DIR,
                        toNativeBytes(home + QLatin1String("/.ssh")).constData());
    if (ssh_options_set(m_session, SSH_OPTIONS_HOST, toNativeBytes(target.host).constData()) != 0)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is no name of a host").arg(target.host));
    ssh_options_set(m_session, SSH_OPTIONS_CIPHERS_C_S, ciphers);
    ssh_options_set(m_session, SSH_OPTIONS_CIPHERS_S_C, ciphers);
    if (ssh_options_parse_config(m_session, nullptr) != 0)
        return fail(FailureKind::Failed,
                    QStringLiteral("the SSH configuration can't be read: %1").arg(lastError()));
    // 2. What the caller says comes first.
    if (target.port > 65535 || target.port == 0 || target.port < -1)
        return fail(FailureKind::BadArgument, QStringLiteral("%1 is no port").arg(target.port));
    if (target.port > 0) {
        const auto port = static_cast<unsigned>(target.port);
        ssh_options_set(m_session, SSH_OPTIONS_PORT, &port);
    }
    const long seconds = m_patience.connecting / 1000;
    const long microseconds = m_patience.connecting % 1000 * 1000L;
    ssh_options_set(m_session, SSH_OPTIONS_TIMEOUT, &seconds);
    ssh_options_set(m_session, SSH_OPTIONS_TIMEOUT_USEC, &microseconds);
    const int on = 1;
    ssh_options_set(m_session, SSH_OPTIONS_NODELAY, &on);
    // Nobody's configuration switches off the comparison of host keys.
    ssh_options_set(m_session, SSH_OPTIONS_STRICTHOSTKEYCHECK, &on);
    ssh_set_counters(m_session, m_counter.get(), nullptr);
    // 3. The name that messages tell.
    unsigned port = 22;
    ssh_options_get_port(m_session, &port);
    char* host = nullptr;
    ssh_options_get(m_session, SSH_OPTIONS_HOST, &host);
    const LibraryText hostText(host);
    m_name = QStringLiteral("%1:%2").arg(host ? fromNativeBytes(host) : target.host,
                                         QString::number(port));
    // 4. The server.
    if (BlockingSection::run([&] { return ssh_connect(m_session); }) != SSH_OK)
        return fail(FailureKind::Failed,
                    QStringLiteral("%1 can't be reached: %2").arg(m_name, lastError()));
    watchNetwork(descriptor(), m_patience.silence);
    return {};
}

Outcome<> SshConnection::checkHostKey() {
    const QString key = fingerprint(m_session);
    switch (ssh_session_is_known_server(m_session)) {
        case SSH_KNOWN_HOSTS_OK:
            return {};
        case SSH_KNOWN_HOSTS_CHANGED:
            return fail(
                FailureKind::Refused,
                QStringLiteral("the key of the host %1 is not the one in known_hosts, but %2: "
                               "somebody may be in between, or the host was set up anew; nothing "
                               "was sent to it")
                    .arg(m_name, key));
        case SSH_KNOWN_HOSTS_OTHER:
            return fail(FailureKind::Refused,
                        QStringLiteral("the host %1 shows a key of another type than that in "
                                       "known_hosts, %2: somebody may be in between; nothing was "
                                       "sent to it")
                            .arg(m_name, key));
        case SSH_KNOWN_HOSTS_UNKNOWN:
        case SSH_KNOWN_HOSTS_NOT_FOUND:
            return fail(FailureKind::Refused,
                        QStringLiteral("the host %1 is not in known_hosts; its key is %2. Compare "
                                       "it with that of the machine, and connect once with "
                                       "'ssh' to accept it")
                            .arg(m_name, key));
        case SSH_KNOWN_HOSTS_ERROR:
            break;
    }
    return fail(
        FailureKind::Refused,
        QStringLiteral("the key of the host %1 can't be checked: %2").arg(m_name, lastError()));
}

Outcome<> SshConnection::authenticate() {
    const int result = BlockingSection::run([&] {
        const int none = ssh_userauth_none(m_session, nullptr);
        return none == SSH_AUTH_DENIED || none == SSH_AUTH_PARTIAL
                   ? ssh_userauth_publickey_auto(m_session, nullptr, nullptr)
                   : none;
    });
    if (result == SSH_AUTH_SUCCESS)
        return {};
    if (result == SSH_AUTH_ERROR)
        return fail(FailureKind::Failed,
                    QStringLiteral("%1 does not let the user in: %2").arg(m_name, lastError()));
    char* user = nullptr;
    ssh_options_get(m_session, SSH_OPTIONS_USER, &user);
    const LibraryText userText(user);
    return fail(FailureKind::Refused,
                QStringLiteral("%1 accepts no key of the agent or of the folder .ssh for the user "
                               "'%2' (it accepts: %3)")
                    .arg(m_name, user ? fromNativeBytes(user) : QString(),
                         methodsText(ssh_userauth_list(m_session, nullptr))));
}

int SshConnection::descriptor() const {
    return ssh_get_fd(m_session);
}

QString SshConnection::endText() const {
    if (!m_endText.isEmpty() || ssh_is_connected(m_session) != 0)
        return m_endText;
    return QStringLiteral("the connection to %1 has ended").arg(m_name);
}

Outcome<> SshConnection::ended(const QString& reason) {
    if (m_endText.isEmpty())
        m_endText = QStringLiteral("the connection to %1 has ended: %2").arg(m_name, reason);
    return fail(FailureKind::Ended, m_endText);
}

Outcome<> SshConnection::lookForLife() {
    // The time in which nobody waited does not count.
    constexpr int longestWait = 1000;
    const bool isNewWait = m_sinceWait.restart() > longestWait;
    if (isNewWait || m_counter->in_bytes != m_lastCount) {
        m_lastCount = m_counter->in_bytes;
        m_sinceLife.restart();
        m_sinceQuestion.restart();
        return {};
    }
    if (m_sinceLife.elapsed() > m_patience.silence)
        return ended(QStringLiteral("the server has not answered for %1 s")
                         .arg(QString::number(m_patience.silence / 1000.0)));
    // A server that has nothing to tell answers a question.
    if (m_sinceQuestion.elapsed() > m_patience.silence / 4) {
        m_sinceQuestion.restart();
        ssh_send_keepalive(m_session);
    }
    return {};
}

Outcome<> SshConnection::wait(int milliseconds, std::vector<pollfd>* others) {
    if (!endText().isEmpty())
        return fail(FailureKind::Ended, endText());
    const bool hasToWrite = (ssh_get_poll_flags(m_session) & SSH_WRITE_PENDING) != 0;
    std::vector<pollfd> watched = others ? *others : std::vector<pollfd>();
    watched.push_back(
        {descriptor(), static_cast<short>(hasToWrite ? POLLIN | POLLOUT : POLLIN), 0});
    // What has come since the last wait may be for a stream that was looked at before.
    const bool hasNews = m_counter->in_bytes != m_lastWaitCount;
    m_lastWaitCount = m_counter->in_bytes;
    if (!hasNews || others)
        blockingPoll(watched.data(), watched.size(), hasNews ? 0 : std::min(milliseconds, 100));
    watched.pop_back();
    if (others)
        *others = watched;
    if (m_idleHook && !m_idleHook())
        return fail(FailureKind::Failed, QStringLiteral("the run was interrupted"));
    return lookForLife();
}

Outcome<> SshConnection::repeat(const std::function<int()>& step, const QString& whatFails) {
    while (true) {
        const int result = step();
        if (result == SSH_OK)
            return {};
        if (!endText().isEmpty())
            return fail(FailureKind::Ended, endText());
        if (result != SSH_AGAIN)
            return fail(FailureKind::Failed, QStringLiteral("%1: %2").arg(whatFails, lastError()));
        if (const Outcome<> waited = wait(100); !waited)
            return waited;
    }
}

}  // namespace Tamrix
