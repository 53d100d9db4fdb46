#pragma once

#include <QString>

#include "plugins/python/frames.h"

namespace Tamrix::PythonPlugin {

/// What the running call of a verdict says in its script: the source text of its first argument, or
/// of the one called `parameter`, and below it, a line each, the values in it:
///
///     field.text == wanted and len(rows) > 2
///     field.text: 'a'
///     wanted: 'b'
///     len(rows): 2
///
/// The values are looked up once more: names, attributes, elements, operators and some of Python's
/// own functions; no other call is made a second time. Empty when there is nothing to tell: for a
/// plain constant, code without a file, a file that is another one by now. Throws PythonErrorSet
/// for an exception that ends the script.
QString explainCall(const char* parameter, CodeFiles& files);

}  // namespace Tamrix::PythonPlugin
