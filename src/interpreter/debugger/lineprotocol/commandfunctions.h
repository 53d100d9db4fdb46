#pragma once

#include <string>

#include "interpreter/debugger/lineprotocol/command.h"

namespace Tamrix {

class InternalDebugger;

// The functions of the commands, a group for each file. What they do with wrong arguments they
// answer themselves.

// resumecommands.cpp: how the script goes on.
CommandEffect nextCommand(const CommandCall& call);
CommandEffect returnCommand(const CommandCall& call);
CommandEffect stepCommand(const CommandCall& call);
CommandEffect stopCommand(const CommandCall& call);
CommandEffect runCommand(const CommandCall& call);
CommandEffect continueCommand(const CommandCall& call);

// breakpointcommands.cpp
CommandEffect breakCommand(const CommandCall& call);
CommandEffect deleteCommand(const CommandCall& call);

// inspectioncommands.cpp: where the script stands and what it holds.
CommandEffect printCommand(const CommandCall& call);
CommandEffect backtraceCommand(const CommandCall& call);
CommandEffect evalCommand(const CommandCall& call);

// quitcommand.cpp
CommandEffect quitCommand(const CommandCall& call);

// switchcommands.cpp: what stops, and what is searched for.
CommandEffect enableObjectNotFoundDebuggingCommand(const CommandCall& call);
CommandEffect enableImageNotFoundDebuggingCommand(const CommandCall& call);
CommandEffect enableTextNotFoundDebuggingCommand(const CommandCall& call);
CommandEffect imageNotFoundFixTargetCommand(const CommandCall& call);
CommandEffect imageSearchDefaultsCommand(const CommandCall& call);
CommandEffect breakOnMissingStepCommand(const CommandCall& call);

// searchstatecommands.cpp: the search that failed and stopped.
CommandEffect setInterpreterStateForCommand(const CommandCall& call);
CommandEffect getInterpreterStateForCommand(const CommandCall& call);

// launchcommand.cpp
CommandEffect launchApplicationCommand(const CommandCall& call);

/// The state of a search on one line, as JSON.
std::string searchStateText(const InternalDebugger& search);

}  // namespace Tamrix
