#pragma once

#include <QString>

#include "interpreter/language/nativefunction.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// The name as scripts write it: a keyword of Python gets an underscore behind it.
QString pythonName(const QString& name);

/// Whether the object is a function that one of the following made.
bool isNativeFunction(PyObject* object);

/// A Python function over a native one. It lives for the process: making it a second time for the
/// same owner, name and native function gives the same object. Throws PythonErrorSet.
///
/// Of the accessor of a static property, and of a constructor, which is `__new__`, the first Python
/// argument is the class; of a method it is the object. It is not among the arguments of the
/// context.
PyRef makeFunction(const NativeFunction& function);

}  // namespace Tamrix::PythonPlugin
