#pragma once

#include "plugins/python/pyref.h"

namespace Tamrix {
class ObjectModel;
}

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

// The methods of the application's global class as global names of the script: click(object) and
// the like. A call looks the method up in the application that is the current one then.

/// Makes the type of such functions, tamrix.GlobalFunction, and adds it to the module. False with
/// the error indicator set on failure.
bool addGlobalFunctionType(PyObject* module);

/// Makes the names known to scripts: those that all applications have and, when `model` is not
/// null, those of its global class. Names that are defined already stay what they are. Throws
/// PythonErrorSet.
void publishGlobalFunctions(PythonInterpreter& interpreter, ObjectModel* model);

}  // namespace Tamrix::PythonPlugin
