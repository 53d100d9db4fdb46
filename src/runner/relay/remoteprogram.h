#pragma once

#include <QString>
#include <optional>

#include "base/outcome.h"
#include "runner/relay/relaymessages.h"
#include "runner/remote/sshconnection.h"

namespace Tamrix::Relay {

/// A program on another machine, for the run that started this process in the program's place: the
/// agents there reach the run through `agentSocket`, what the program writes comes out of this
/// process, and this process ends as the program does. It ends the program when it gets SIGTERM;
/// when it is gone, the program is ended, too.
struct RemoteProgram {
    SshTarget target;
    Start start;
    QString agentSocket;
};

/// Runs it to its end. A failure is why there is no program, or why the way to it is gone.
Outcome<End> runRemoteProgram(const RemoteProgram& program);

/// What the process that stands for the program is given in its environment, as bytes of Latin 1.
inline constexpr const char* startVariable = "TAMRIX_REMOTE_START";
/// Takes it out of this process's environment; nothing when it is not whole.
std::optional<RemoteProgram> takeProgramFromEnvironment();
QByteArray encode(const RemoteProgram& program);
bool decode(const QByteArray& text, RemoteProgram* program);

}  // namespace Tamrix::Relay
