#pragma once

#include <QString>

#include "base/outcome.h"

namespace Tamrix::Mcp {

/// Where programs appear, as Applications::useDisplay() takes it, and who is served.
struct ServingOptions {
    QString display;
    /// A local socket at which clients of one session come and go; empty for one client at
    /// standard input and output.
    QString socket;
};

/// Serves until the client has gone or a signal asks this process to end; at a socket, until that
/// or until no client has come for a long time. Ends the programs that were started. Returns the
/// process's exit code.
Outcome<int> serveClients(const ServingOptions& options);

}  // namespace Tamrix::Mcp
