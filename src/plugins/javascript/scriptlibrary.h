#pragma once

#include <jsapi.h>

namespace Tamrix::JavaScriptPlugin {

/// Gives a new global object what scripts find there beyond the functions of the test system:
/// `console`, `print`, timers, the functions for steps, `RemoteSystem` and the namespace `tamrix`.
/// Returns what the library itself needs: `classes`, those of errors by their names, and `context`,
/// the object of steps. Throws ScriptErrorSet.
JSObject* addScriptLibrary(JS::HandleObject global);

}  // namespace Tamrix::JavaScriptPlugin
