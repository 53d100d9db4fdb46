#pragma once

#include <csignal>

#include "base/export.h"

namespace Tamrix {

class Debugger;

// SIGINT during a run that is debugged. One debugger at a time receives it.

/// The next SIGINT calls `debugger`->interrupt(), in the signal handler. The one behind it does
/// what it would have done without debugger, which by default ends the process.
void stopOnInterrupt(Debugger* debugger);

/// Whether that is so.
bool stopsOnInterrupt(const Debugger* debugger);

/// Tells, in the signal handler, whether a SIGINT is to be passed over: where one is told to
/// several processes that tell each other.
using InterruptFilter = bool (*)(int signal, const siginfo_t& info);
/// Null, as at first, takes every SIGINT as it comes.
TAMRIX_EXPORT void setInterruptFilter(InterruptFilter isPassedOver);

/// If `debugger` was the last one given to stopOnInterrupt(), SIGINT is handled again as before the
/// first of these calls. Otherwise does nothing.
void releaseInterrupt(const Debugger* debugger);

}  // namespace Tamrix
