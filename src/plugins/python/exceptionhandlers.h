#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Whether a frame that runs may catch an exception that is raised at the instruction where it
/// stands: an `except` that matches, or one that can't be judged beforehand, such as a `with` or an
/// `except*`. A `finally` does not catch.
bool mayCatch(PyObject* frame, PyObject* exception);

}  // namespace Tamrix::PythonPlugin
