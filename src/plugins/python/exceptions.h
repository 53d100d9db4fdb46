#pragma once

#include <QString>

#include "interpreter/language/scriptfailure.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Finds the exceptions that the module `tamrix` has for failures. Throws PythonErrorSet.
void findExceptions(PyObject* module);

/// Raises the exception for a kind of failure, and returns it; null when another one had to be
/// raised. What Python itself has exceptions for is an AttributeError or a TypeError.
PyRef raiseException(ScriptFailure::Kind kind, const QString& message);

}  // namespace Tamrix::PythonPlugin
