#pragma once

namespace Tamrix::Agent {

class Session;

/// Lets the session answer what looks objects up and lists them: LookUp, Expect, FindItem and
/// others. Called once, at the start.
void registerObjectHandlers(Session* session);

}  // namespace Tamrix::Agent
