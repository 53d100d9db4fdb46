#pragma once

#include "interpreter/language/scripterrorset.h"
#include "plugins/tcl/tclinterpreter.h"

namespace Tamrix::TclPlugin {

/// Runs the body of a command: what unwinds native code in it becomes the end of the command.
template <typename Body>
int runCommand(TclInterpreter& interpreter, Body body) {
    try {
        return body();
    } catch (const ScriptErrorSet&) {
        return interpreter.failAsPending();
    }
}

}  // namespace Tamrix::TclPlugin
