#pragma once

#include <poll.h>

#include <QElapsedTimer>
#include <QString>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "base/outcome.h"

struct ssh_session_struct;
struct ssh_counter_struct;

namespace Tamrix {

/// Where a server is.
struct SshTarget {
    /// A name of the user's ssh configuration, a host's name or address, each also as "user@host".
    QString host;
    /// -1 for what the configuration says, else 22.
    int port = -1;
};

/// How long a server may take, in milliseconds.
struct SshPatience {
    /// For each step until the user is let in.
    int connecting = 30000;
    /// Without a sign of life.
    int silence = 30000;
};

/// A connection by SSH to a server that the user knows, in the user's name. Script thread only.
///
/// Host keys are compared with the user's known_hosts: an unknown or changed one is refused. The
/// user is known by the keys of the agent and of the folder ".ssh"; nothing is asked for.
class SshConnection {
public:
    static Outcome<std::unique_ptr<SshConnection>> open(const SshTarget& target,
                                                        const SshPatience& patience = {});
    ~SshConnection();
    SshConnection(const SshConnection&) = delete;
    SshConnection& operator=(const SshConnection&) = delete;

    /// Called again and again in waits, which fail when it returns false.
    void setIdleHook(std::function<bool()> hook) { m_idleHook = std::move(hook); }
    /// Nothing is called any more.
    std::function<bool()> takeIdleHook() { return std::exchange(m_idleHook, {}); }

    /// Waits until something may have come or can be sent, at most this long. Fails when the
    /// connection has ended, the server is silent for too long or the idle hook wants an end.
    /// `others`, when given, are polled together with the connection.
    Outcome<> wait(int milliseconds, std::vector<pollfd>* others = nullptr);
    /// Repeats a step, which does not wait, until it gives another result than SSH_AGAIN; fails
    /// with the server's words when that is not SSH_OK.
    Outcome<> repeat(const std::function<int()>& step, const QString& whatFails);
    /// Why the connection has ended. Empty while it has not.
    QString endText() const;
    /// The descriptor, to be polled.
    int descriptor() const;

    ssh_session_struct* session() const { return m_session; }

private:
    explicit SshConnection(const SshPatience& patience);
    Outcome<> connect(const SshTarget& target);
    Outcome<> checkHostKey();
    Outcome<> authenticate();
    QString lastError() const;
    /// Remembers that the connection has ended.
    Outcome<> ended(const QString& reason);
    Outcome<> lookForLife();

    ssh_session_struct* m_session;
    std::unique_ptr<ssh_counter_struct> m_counter;
    SshPatience m_patience;
    QString m_name;
    QString m_endText;
    std::function<bool()> m_idleHook;
    quint64 m_lastCount = 0;
    quint64 m_lastWaitCount = 0;
    QElapsedTimer m_sinceLife;
    QElapsedTimer m_sinceQuestion;
    QElapsedTimer m_sinceWait;
};

}  // namespace Tamrix
