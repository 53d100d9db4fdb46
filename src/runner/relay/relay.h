#pragma once

#include "base/outcome.h"

namespace Tamrix::Relay {

/// The end of the way on the program's machine: starts the program with its agent, passes on what
/// the agents and the program tell, and ends the program when it is told to, when the stream ends
/// or when no sign of life comes. `input` and `output` are the stream, `errors` is for what nobody
/// asked. Returns the exit code of the process.
int runRelay(int input, int output);

}  // namespace Tamrix::Relay
