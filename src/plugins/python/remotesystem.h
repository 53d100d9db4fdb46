#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Adds the class RemoteSystem to the module `tamrix` and to the names that every script sees. It
/// is written in Python, around the native functions that begin with "_tamrix_". False with the
/// error indicator set on failure.
bool addRemoteSystem(PyObject* module);

}  // namespace Tamrix::PythonPlugin
