#pragma once

#include <QString>
#include <vector>

#include "platform/testresult/lineinfo.h"
#include "plugins/python/frames.h"

namespace Tamrix::PythonPlugin {

/// What a person is told of an exception.
struct ScriptError {
    /// The exception itself, null when none was set.
    PyRef exception;
    /// "NAME: text", with notes and the exceptions that led to it below.
    QString message;
    /// Script lines, innermost first. Lines of Python's library are left out; when no line is in a
    /// script, the innermost line stands alone.
    std::vector<LineInfo> callStack;
    /// The line of the outermost code that was running, also of code without a file; 0 when no
    /// code was.
    int outermostLine = 0;
    /// A sys.exit() without a failure.
    bool isExit = false;
};

/// Takes the exception that is set and clears the error indicator. `files`, when given, is asked
/// for the lines; without it the stack is empty.
ScriptError takeScriptError(SourceFiles* files = nullptr);

}  // namespace Tamrix::PythonPlugin
