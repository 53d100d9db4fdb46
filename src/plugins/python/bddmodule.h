#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Makes the module `bdd`, with which scripts register step definitions, hooks and parameter types.
/// False with the error indicator set on failure.
bool addBddModule();

/// The exception of a step that is still to be written; borrowed.
PyObject* pendingStepError();

}  // namespace Tamrix::PythonPlugin
