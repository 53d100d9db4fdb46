#pragma once

namespace Tamrix::Agent {

class Session;

/// Lets the session answer DescribeClass, ReadProperty, ReadProperties, WriteProperty and Invoke.
/// Called once, at the start.
void registerPropertyHandlers(Session* session);

}  // namespace Tamrix::Agent
