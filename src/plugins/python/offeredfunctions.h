#pragma once

#include <QString>
#include <QStringList>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

// The functions that all agents offer as methods of the application's global class. The names are
// there before an application is connected, and so are those of the parameters, which the
// application does not tell.

struct OfferedFunction {
    const char* name;
    /// As people write it: parameters in brackets may be left out, all of a bracket together.
    const char* parameters;
    const char* description;
    bool takesObject = true;
};

/// Null for a function that agents do not offer by themselves.
const OfferedFunction* offeredFunction(const QString& name);
QStringList offeredFunctionNames();

/// The arguments of a call in the order in which the application takes them: named ones at their
/// places, such as are left out or None not at all. A tuple. Throws PythonErrorSet with a TypeError
/// that names what is wrong. `named` may be null.
PyRef orderedArguments(const OfferedFunction& function, PyObject* tuple, PyObject* named);

}  // namespace Tamrix::PythonPlugin
