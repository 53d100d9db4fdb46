#pragma once

#include <QString>

#include "interpreter/bridge/scriptcontext.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Makes the exception classes and adds them to the module `tamrix`:
///   Error (a RuntimeError), LookupError (an Error and a LookupError), VerificationError (an Error
///   and an AssertionError), FatalError (a BaseException, which `except Exception` lets pass).
/// False with the error indicator set on failure.
bool addExceptions(PyObject* module);

/// Raises the exception for a kind of script error, and returns it; null when another one had to be
/// raised.
PyRef raiseScriptError(ScriptContext::ErrorType type, const QString& message);

}  // namespace Tamrix::PythonPlugin
