#pragma once

namespace Tamrix::Agent {

class Session;

/// Adds what knows widgets and actions, their items, and graphics items.
void addWidgetToolkits(Session* session);

}  // namespace Tamrix::Agent
