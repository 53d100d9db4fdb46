#pragma once

#include <QString>
#include <vector>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

struct ValueAttribute {
    QString name;
    PyRef value;
};

/// The attributes of an object, a class or a module but those that Python defines: slots in front
/// of the others. Runs no code of scripts.
std::vector<ValueAttribute> attributesOf(PyObject* value);

/// The entry, element or attribute with the name as it stands in paths; null when there is none.
PyRef memberNamed(PyObject* value, const QString& name);

}  // namespace Tamrix::PythonPlugin
