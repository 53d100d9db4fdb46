#pragma once

#include "plugins/javascript/engineapi.h"

namespace Tamrix::JavaScriptPlugin {

/// Waits for a promise, which becomes what it is fulfilled with; any other value stays what it is.
/// Jobs, timers and the run's own work go on meanwhile. Throws ScriptErrorSet with what the promise
/// is rejected with, or when nothing is left that could settle it.
void settled(JS::MutableHandleValue value);

/// Throws ScriptErrorSet with what a promise was rejected with that nobody looks at.
void throwUnhandledRejection();

}  // namespace Tamrix::JavaScriptPlugin
