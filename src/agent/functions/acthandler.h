#pragma once

namespace Tamrix::Agent {

class Session;

/// Lets the session answer Act. Called once, at the start.
void registerActHandler(Session* session);

}  // namespace Tamrix::Agent
