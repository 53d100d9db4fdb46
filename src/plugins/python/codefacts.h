#pragma once

#include <vector>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// What a debugger has found out of a code object, kept at the code object itself, where finding it
/// again takes a few nanoseconds. It is gone when the code object is.
struct CodeFacts {
    /// Of which state of the debugger the facts are. No other state has the same number; 0 says
    /// that nothing has been found out yet.
    unsigned state = 0;
    /// Whether the code is of a script.
    bool isScript = false;
    /// The lines of the code that have a break point.
    std::vector<int> breakLines;

    bool hasBreakPoint(int line) const;
};

/// The facts of a code object; empty ones are made when it has none.
CodeFacts& factsOf(PyCodeObject* code);

}  // namespace Tamrix::PythonPlugin
