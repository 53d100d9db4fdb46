#pragma once

#include <QString>

#include "base/outcome.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// Evaluates code that a person writes while a script stands still, with the variables of a frame.
/// An expression gives its representation. Statements give an empty text; what they assign to
/// variables of the frame is there when the script goes on. The failure is the text of what was
/// raised.
Outcome<QString> evaluateInFrame(PythonInterpreter& interpreter, PyObject* frame,
                                 const QString& code);

/// The same with the globals of a module alone.
Outcome<QString> evaluateInModule(PythonInterpreter& interpreter, PyObject* globals,
                                  const QString& code);

}  // namespace Tamrix::PythonPlugin
