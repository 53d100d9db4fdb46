#pragma once

#include <QString>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

// The methods of the application's global class as global names of the script: click(object) and
// the like. A call looks the method up in the application that is the current one then.

/// Makes the type of such functions, tamrix.GlobalFunction, and adds it to the module. False with
/// the error indicator set on failure.
bool addGlobalFunctionType(PyObject* module);

/// Makes the name known to scripts, unless something is defined under it already. Throws
/// PythonErrorSet.
void publishGlobalFunction(PythonInterpreter& interpreter, const QString& name);

}  // namespace Tamrix::PythonPlugin
