#pragma once

#include "runner/remote/sshconnection.h"
#include "runner/remote/system.h"

namespace Tamrix {

/// Runs a program on the server's machine to its end. It is ended when the time is over, or the
/// connection's idle hook wants an end. What the program leaves running is not waited for.
Outcome<CommandResult> runSshCommand(SshConnection& connection, const SystemCommand& command);

}  // namespace Tamrix
