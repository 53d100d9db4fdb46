#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <atomic>
#include <memory>
#include <optional>
#include <thread>

#include "support/environmentguard.h"

namespace Tamrix::Test {

/// A real server on a loopback port, with keys of its own: another machine on this one. As long as
/// it is there, HOME is a folder whose ".ssh" knows the server and is known to it.
class SshServer {
public:
    /// Further lines of the server's configuration.
    explicit SshServer(const QString& configuration = {});
    ~SshServer();
    SshServer(const SshServer&) = delete;
    SshServer& operator=(const SshServer&) = delete;

    int port() const { return m_port; }
    QString home() const { return m_folder.path(); }
    /// Lets the user's known_hosts have the server's key for a port: the line is that of this key.
    void makeKnown(int port, const QByteArray& key);
    QByteArray hostKey() const;
    /// What the server has told, for messages.
    QString log() const;

private:
    /// Starts the server at a free port. False when it does not get it.
    bool listen();

    QTemporaryDir m_folder;
    std::optional<EnvironmentGuard> m_home;
    int m_port = 0;
    QProcess m_process;
};

/// Passes bytes between a port of its own and another one, as long as it is let: a network that
/// fails when it is told to.
class FailingNetwork {
public:
    explicit FailingNetwork(int serverPort);
    ~FailingNetwork();
    FailingNetwork(const FailingNetwork&) = delete;
    FailingNetwork& operator=(const FailingNetwork&) = delete;

    int port() const { return m_port; }
    /// Cuts connections once this many further bytes have passed, in both directions together.
    void cutAfter(qint64 bytes);
    /// Nothing passes any more, and nobody is told.
    void freeze() { m_isFrozen = true; }

private:
    void work();
    /// Passes on what is there; false when the connection is to be cut.
    bool pass(int from, int to);

    int m_listener = -1;
    int m_port = 0;
    const int m_serverPort;
    std::atomic<qint64> m_left{-1};
    std::atomic<bool> m_isFrozen{false};
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

}  // namespace Tamrix::Test
