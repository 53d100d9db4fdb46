#pragma once

namespace Tamrix::Agent {

class Session;

/// Lets the session answer Record. Called once, at the start.
void registerRecordHandlers(Session* session);

}  // namespace Tamrix::Agent
