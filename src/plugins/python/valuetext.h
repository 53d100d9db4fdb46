#pragma once

#include <QString>
#include <chrono>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Writes values as a person looks at them while a script stands still. Long ones are cut before
/// they are written, so that their length costs nothing. What script code of theirs takes, raises
/// or returns does no harm: it has a limited time for each value, and for all values that one
/// object writes.
class ValueTexts {
public:
    /// Python's representation, or in <> what there is instead of it. Never raises.
    QString textOf(PyObject* value);

    /// Whether something is left out of the text.
    static bool isCut(const QString& text) { return text.contains("..."); }

    /// The name of the value's type, without its module.
    static QString typeNameOf(PyObject* value);

private:
    QString bounded(PyObject* value, int depth);
    QString containerText(PyObject* value, int depth);
    QString scriptText(PyObject* value);

    /// What is left for script code.
    std::chrono::milliseconds m_left{250};
};

}  // namespace Tamrix::PythonPlugin
