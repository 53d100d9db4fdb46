#pragma once

#include "interpreter/objects/members.h"
#include "plugins/python/holder.h"

namespace Tamrix::PythonPlugin {

/// tamrix.Method, a method that is bound to its object: a callable of Python.
using MethodHolder = Holder<BoundMethod>;

/// Makes the type and adds it to the module. False with the error indicator set on failure.
bool addMethodType(PyObject* module);

}  // namespace Tamrix::PythonPlugin
