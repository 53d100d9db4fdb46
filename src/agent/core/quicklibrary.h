#pragma once

#include "base/export.h"

namespace Tamrix::Agent {

class Session;

/// Loads what sees Qt Quick, libtamrixagentquick.so beside the agent, once Qt Quick itself is in
/// the process. Cheap when there is nothing to do: it is asked before each request, since an
/// application may load Qt Quick at any time.
void loadQuickWhereItIs(Session* session);

}  // namespace Tamrix::Agent

extern "C" {

/// The library's one function: adds its toolkit to the session.
TAMRIX_EXPORT void tamrixAgentAddQuick(Tamrix::Agent::Session* session);

}  // extern "C"
