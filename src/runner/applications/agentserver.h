#pragma once

#include <sys/types.h>

#include <QElapsedTimer>
#include <QString>
#include <memory>
#include <vector>

#include "platform/objectmodel/remote/agentconnection.h"
#include "runner/processes/privatefolder.h"

namespace Tamrix {

/// The socket at which the agents of a run's applications announce themselves, in a folder of its
/// own that only this user can enter. Script thread only; never waits.
class AgentServer {
public:
    /// The time-out of a peer's handshake, in milliseconds.
    static constexpr int helloTimeout = 5000;

    explicit AgentServer(const QString& runId);
    /// Removes socket and folder.
    ~AgentServer();
    AgentServer(const AgentServer&) = delete;
    AgentServer& operator=(const AgentServer&) = delete;

    /// Listens, unless it does already.
    Outcome<> listen();
    /// To be polled for reading; -1 before listen().
    int descriptor() const { return m_listener; }
    QString folder() const { return m_folder.path(); }
    QString socketPath() const;
    /// The token with which agents authenticate themselves: random, new for each server.
    QString token() const { return m_token; }

    /// Accepts connections and performs the handshake. Peers that are no agents, or have a wrong
    /// version or token, are refused with a text that says why.
    void work();
    struct Accepted {
        std::shared_ptr<AgentConnection> connection;
        /// What connected: the process of the agent, or one that stands for it. -1 when unknown.
        pid_t process = -1;
    };
    /// The connections that were opened since the last call.
    std::vector<Accepted> takeAccepted();
    /// A peer that was refused.
    struct Refusal {
        /// -1 when unknown.
        pid_t process = -1;
        /// Empty for none.
        QString text;
        /// It is no agent, or has a wrong version or token: trying again won't help.
        bool isFinal = false;
    };
    /// The last one since the last call.
    Refusal takeRefusal();

private:
    struct Peer {
        std::shared_ptr<AgentConnection> connection;
        pid_t process = -1;
        QElapsedTimer sinceConnect;
    };

    void acceptPeers();
    /// Reads from a peer; true when nothing more is to be expected of it.
    bool readPeer(Peer& peer);

    QString m_runId;
    QString m_token;
    PrivateFolder m_folder;
    int m_listener = -1;
    std::vector<Peer> m_peers;
    std::vector<Accepted> m_accepted;
    Refusal m_refusal;
};

/// Random letters and digits, as hard to guess as 128 random bits.
QString randomToken();

}  // namespace Tamrix
