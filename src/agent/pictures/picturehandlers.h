#pragma once

namespace Tamrix::Agent {

class Session;

/// Lets the session answer NativeRequest, Highlight and StopHighlight.
/// Called once, at the start.
void registerPictureHandlers(Session* session);

}  // namespace Tamrix::Agent
