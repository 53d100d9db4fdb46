#pragma once

#include "interpreter/language/languageinterpreter.h"
#include "plugins/python/frames.h"

namespace Tamrix::PythonPlugin {

/// What a person is told of an exception. Of the call stack, lines of Python's library are left
/// out; when no line is in a script, the innermost line stands alone. An exit is a sys.exit()
/// without a failure.
struct PythonError : ScriptError {
    /// The exception itself, null when none was set.
    PyRef exception;
};

/// Takes the exception that is set and clears the error indicator. `files`, when given, is asked
/// for the lines; without it the stack is empty.
PythonError takeScriptError(SourceFiles* files = nullptr);

}  // namespace Tamrix::PythonPlugin
