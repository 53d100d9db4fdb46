#pragma once

#include "base/export.h"

extern "C" {

/// Starts the agent in this process, as soon as the application's event loop runs: connects to the
/// runner that the environment names and announces the process. Nothing happens in a program
/// without a graphical user interface, without a runner, or when it was called before. To be called
/// from the GUI thread once the application object is being made. A failure to connect is told in
/// one line on standard error and does no more.
TAMRIX_EXPORT void tamrixAgentStart();

}  // extern "C"
