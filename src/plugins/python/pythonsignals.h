#pragma once

#include <csignal>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

// Signals of our own, for which Python has handlers. It runs a handler where it looks for Ctrl-C as
// well: on its main thread, between two instructions, in waiting calls, and between the elements of
// a container that is written. What is sent need not be a signal of the system:
// PyErr_SetInterruptEx() has the same effect, and may be called in the handler of one.

/// A real-time signal that nothing else in a test run uses.
inline int stopSignal() {
    return SIGRTMAX - 3;
}

/// Has Python call the function, of two arguments and with METH_VARARGS, for the signal. The
/// definition lives for the process. False on another thread than Python's main one.
bool setSignalHandler(int signal, PyMethodDef& definition);

}  // namespace Tamrix::PythonPlugin
