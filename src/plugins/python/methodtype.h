#pragma once

#include "interpreter/objects/members.h"
#include "plugins/python/holder.h"

namespace Tamrix::PythonPlugin {

/// tamrix.Method, a method that is bound to its object: a callable of Python.
using MethodHolder = Holder<BoundMethod>;

/// Makes the type and adds it to the module. Throws PythonErrorSet.
void addMethodType(PyObject* module);

}  // namespace Tamrix::PythonPlugin
