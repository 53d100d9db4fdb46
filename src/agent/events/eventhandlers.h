#pragma once

namespace Tamrix::Agent {

class Session;

/// Lets the session answer InstallHandler, UninstallHandler and SendEvent.
/// Called once, at the start.
void registerEventHandlers(Session* session);

}  // namespace Tamrix::Agent
