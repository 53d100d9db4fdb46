#pragma once

namespace Tamrix::RubyPlugin {

/// Lets other threads of scripts run while native code waits; once for the process.
void installWaits();

}  // namespace Tamrix::RubyPlugin
