#pragma once

namespace Tamrix::Agent {

class Session;

/// Lets the session answer MouseEvent, KeyEvent, Sync and Quit.
/// Called once, at the start.
void registerInputHandlers(Session* session);

}  // namespace Tamrix::Agent
