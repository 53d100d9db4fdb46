#pragma once

#include <QString>

#include "platform/objectmodel/object.h"
#include "plugins/python/pyref.h"

namespace Tamrix {
class Method;
}

namespace Tamrix::PythonPlugin {

// Calls into the application. All throw PythonErrorSet when Python or the application refuses.

/// Python arguments as objects of a call. `method`, when given, tells the types that are wanted.
/// Values that no application takes are a TypeError that names the function and the place.
ObjectList callArguments(const QString& function, PyObject* tuple, const Method* method);

/// What the script gets for the result of a call; null raises the inspector's last error.
PyRef callResult(const SharedPtr<Object>& result);

/// The arguments by name of a call, which none takes: raises a TypeError when there are any.
void refuseNamedArguments(const QString& function, PyObject* named);

/// Makes the type of methods that are bound to their object, tamrix.Method, and adds it to the
/// module. False with the error indicator set on failure.
bool addMethodType(PyObject* module);

/// The method of this name as a callable of Python. Which of several methods of the name is meant
/// is decided by the number of arguments, then by their types.
PyRef bindMethod(SharedPtr<Object> object, const QString& name);

}  // namespace Tamrix::PythonPlugin
