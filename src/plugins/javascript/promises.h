#pragma once

#include "plugins/javascript/engineapi.h"

namespace Tamrix::JavaScriptPlugin {

// What scripts wait for. All of these throw ScriptErrorSet.

/// Waits for a promise, which becomes what it is fulfilled with; any other value stays what it is.
/// Jobs, timers and the run's own work go on meanwhile. Throws what the promise is rejected with,
/// or when nothing is left that could settle it.
void settled(JS::MutableHandleValue value);

/// Throws what a promise was rejected with that nobody looks at.
void throwUnhandledRejection();

/// Calls the function once the time is over, if anybody waits then. Gives the timer's number.
int addTimer(JS::HandleObject function, double milliseconds);
void removeTimer(int number);

/// Nothing is waited for any more, at the end of a test case.
void stopWaiting();

}  // namespace Tamrix::JavaScriptPlugin
