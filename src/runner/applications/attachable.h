#pragma once

#include <QString>
#include <QStringList>
#include <memory>

#include "base/outcome.h"
#include "platform/objectmodel/remote/agentconnection.h"

namespace Tamrix {

// Programs that are there before a run and stay behind it. "tamrixrunner attachable" starts one and
// keeps it, with the connection to its agent, for as long as it runs. Under the program's name it
// listens at a socket in a folder that only this user can enter. A run that connects there talks to
// the agent as if the agent had connected itself: the keeper performs the handshake in the agent's
// place, with an empty token, and forwards messages, one run at a time. Answers that a run did not
// wait for are dropped, so the next run starts clean.

/// What "tamrixrunner attachable" is asked to do.
struct AttachableOptions {
    /// Letters, digits, ".", "_" and "-".
    QString name;
    /// Program and arguments.
    QStringList command;
};

/// Starts the program and keeps it until it ends or this process is interrupted. Gives the exit
/// code of the program.
Outcome<int> keepAttachable(const AttachableOptions& options);

/// Connects to the keeper of a program; its hello is still to come. Fails when no
/// program of this name is kept.
Outcome<std::shared_ptr<AgentConnection>> connectToAttachable(const QString& name);

/// Removes the sockets of keepers that were killed.
void clearLeftSockets();

}  // namespace Tamrix
