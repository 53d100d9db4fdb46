#pragma once

#include <QElapsedTimer>
#include <QString>
#include <memory>
#include <vector>

#include "platform/objectmodel/remote/agentconnection.h"

namespace Tamrix {

/// The socket at which the agents of a run's applications announce themselves, in a folder of its
/// own that only this user can enter. Script thread only; never waits.
class AgentServer {
public:
    /// How long a peer may take to say hello, in milliseconds.
    static constexpr int helloTimeout = 5000;

    AgentServer();
    /// Removes socket and folder.
    ~AgentServer();
    AgentServer(const AgentServer&) = delete;
    AgentServer& operator=(const AgentServer&) = delete;

    /// Listens, unless it does already. False with `*error` set on failure.
    bool listen(QString* error);
    /// To be polled for reading; -1 before listen().
    int descriptor() const { return m_listener; }
    QString folder() const { return m_folder; }
    QString socketPath() const;
    /// What agents have to show: random, new for each server.
    QString token() const { return m_token; }

    /// Lets in who knocks and reads hellos. Who is no agent, or one with another version or token,
    /// is refused with a text that says why.
    void work();
    /// The connections that were opened since the last call.
    std::vector<std::shared_ptr<AgentConnection>> takeAccepted();
    /// Why a peer was refused last, empty when none was since the last call.
    QString takeRefusal();

private:
    struct Peer {
        std::shared_ptr<AgentConnection> connection;
        QElapsedTimer sinceConnect;
    };

    void acceptPeers();
    /// Reads from a peer; true when nothing more is to be expected of it.
    bool readPeer(Peer& peer);

    QString m_token;
    QString m_folder;
    int m_listener = -1;
    std::vector<Peer> m_peers;
    std::vector<std::shared_ptr<AgentConnection>> m_accepted;
    QString m_refusal;
};

/// A new folder below the user's runtime folder, or that for temporary files, which only this user
/// can enter. Empty with `*error` set on failure.
QString makePrivateFolder(QString* error);

/// Random letters and digits, as hard to guess as 128 random bits.
QString randomToken();

}  // namespace Tamrix
