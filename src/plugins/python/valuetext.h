#pragma once

#include <QString>

#include "interpreter/language/valuetexts.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Writes Python's values as a person looks at them while a script stands still.
class PythonTexts final : public ValueTexts {
public:
    /// Python's representation, or in <> what there is instead of it. Never raises.
    QString textOf(PyObject* value);

    /// The name of the value's type, without its module.
    static QString typeNameOf(PyObject* value);

private:
    QString bounded(PyObject* value, int depth);
    QString containerText(PyObject* value, int depth);
    QString reprText(PyObject* value);
};

}  // namespace Tamrix::PythonPlugin
