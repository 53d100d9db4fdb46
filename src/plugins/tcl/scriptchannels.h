#pragma once

#include "plugins/tcl/tclref.h"

namespace Tamrix {
class ScriptOutput;
}

namespace Tamrix::TclPlugin {

/// Gives an interpreter of Tcl standard channels of its own. What scripts write goes to `output`,
/// which has to outlive the interpreter; what they read comes from the process's standard input,
/// which stays open whatever they close.
void installChannels(Tcl_Interp* interp, ScriptOutput& output);

}  // namespace Tamrix::TclPlugin
