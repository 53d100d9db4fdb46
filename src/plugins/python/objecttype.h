#pragma once

#include "platform/objectmodel/object.h"
#include "plugins/python/holder.h"

namespace Tamrix::PythonPlugin {

/// tamrix.Object, what scripts hold of an object of an application or of a value such as a
/// rectangle: attributes are its properties and methods, repr() is the name that finds it again,
/// equal objects compare equal, and an object is true when there is one behind it.
using ObjectHolder = Holder<Object>;

/// Makes the type and adds it to the module. Throws PythonErrorSet.
void addObjectType(PyObject* module);

}  // namespace Tamrix::PythonPlugin
