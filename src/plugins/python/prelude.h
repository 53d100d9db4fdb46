#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Runs a file of the plug-in's own Python code, "bdd" for prelude/bdd.py, with these globals. Its
/// lines are none of scripts: it has no path. False with the error indicator set on failure.
bool runPrelude(const char* name, PyObject* globals);

}  // namespace Tamrix::PythonPlugin
