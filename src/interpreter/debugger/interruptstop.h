#pragma once

namespace Tamrix {

class Debugger;

// SIGINT during a run that is debugged. One debugger at a time receives it.

/// The next SIGINT calls `debugger`->stop(), the one behind it has the signal's default action and
/// ends the process. The stop runs inside the signal handler: it is safe only while the script
/// thread is in the language's own code.
void stopOnInterrupt(Debugger* debugger);

/// If `debugger` was the last one given to stopOnInterrupt(), SIGINT is handled again as before the
/// first of these calls. Otherwise does nothing.
void releaseInterrupt(const Debugger* debugger);

}  // namespace Tamrix
