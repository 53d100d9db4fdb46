#pragma once

#include "base/export.h"

namespace Tamrix::Agent {

class Session;

/// Loads what knows a toolkit, a library beside the agent, once the toolkit itself is in the
/// process: a program without widgets gets neither. Cheap when there is nothing to do: it is asked
/// before each request, since an application may load a toolkit at any time.
void loadToolkitLibraries(Session* session);

}  // namespace Tamrix::Agent

extern "C" {

// The one function of each such library: adds its toolkits to the session.

TAMRIX_EXPORT void tamrixAgentAddWidgets(Tamrix::Agent::Session* session);
TAMRIX_EXPORT void tamrixAgentAddQuick(Tamrix::Agent::Session* session);

}  // extern "C"
