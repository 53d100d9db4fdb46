#pragma once

#include <QString>

#include "interpreter/language/scriptfailure.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Makes the exception classes and adds them to the module `tamrix`:
///   Error (a RuntimeError), LookupError (an Error and a LookupError), VerificationError (an Error
///   and an AssertionError), FatalError (a BaseException, which `except Exception` lets pass).
/// False with the error indicator set on failure.
bool addExceptions(PyObject* module);

/// Raises the exception for a kind of failure, and returns it; null when another one had to be
/// raised. What Python itself has exceptions for is an AttributeError or a TypeError.
PyRef raiseException(ScriptFailure::Kind kind, const QString& message);

}  // namespace Tamrix::PythonPlugin
