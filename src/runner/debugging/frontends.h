#pragma once

#include <memory>

#include "interpreter/debugger/frontend.h"

namespace Tamrix {

/// Who drives the debugger of a run.
enum class DebuggerDialogue {
    None,     ///< nobody: the scripts run without stops
    Machine,  ///< a program over standard input and output
    Terminal  ///< a person, who also sees the source
};

/// Lets debuggers that are made from now on speak in the dialogue's way.
void prepareDebuggers(DebuggerDialogue dialogue);

/// The front end for one test case; the dialogue is not None. What ends the process at its prompt
/// ends the run in order, and a run that is to end gets no more commands.
std::unique_ptr<DebuggerFrontEnd> createFrontEnd(DebuggerDialogue dialogue);

}  // namespace Tamrix
