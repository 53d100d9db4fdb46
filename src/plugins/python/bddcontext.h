#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Adds the type of the context to the module `bdd`, and the one context that there is. False with
/// the error indicator set on failure.
bool addBddContext(PyObject* module);
/// That context; borrowed.
PyObject* bddContext();

}  // namespace Tamrix::PythonPlugin
