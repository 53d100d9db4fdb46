#pragma once

#include <QString>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// Evaluates code that a person writes while a script stands still, with the variables of a frame.
/// An expression gives its representation. Statements give an empty text; what they assign to
/// variables of the frame is there when the script goes on. Throws PythonErrorSet.
QString evaluateInFrame(PythonInterpreter& interpreter, PyObject* frame, const QString& code);

/// The same with the globals of a module alone.
QString evaluateInModule(PythonInterpreter& interpreter, PyObject* globals, const QString& code);

}  // namespace Tamrix::PythonPlugin
