#pragma once

#include "interpreter/language/languageinterpreter.h"

namespace Tamrix::PythonPlugin {

/// Takes the exception that is set, and tells a person of it. Of the call stack, lines of Python's
/// library are left out; when no line is in a script, the innermost line stands alone. An exit is a
/// sys.exit() without a failure.
ScriptError takeScriptError();

}  // namespace Tamrix::PythonPlugin
