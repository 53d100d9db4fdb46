#pragma once

#include <functional>

#include "runner/remote/system.h"

namespace Tamrix {

/// Runs a program on this machine, in a session of its own, to its end. `idle` is called again and
/// again meanwhile; the program is ended when it returns false or the time is over. What the
/// program leaves running is not waited for.
Outcome<CommandResult> runLocalCommand(const SystemCommand& command,
                                       const std::function<bool()>& idle);

/// How long output may come behind the end of a program, in milliseconds: of what it leaves
/// running, which may keep its streams for long.
inline constexpr int lateOutputPatience = 500;

/// That the program did not end in time, and was ended.
Failure commandTimeout(const SystemCommand& command);
/// That the run was interrupted, and the program ended.
Failure commandInterrupted(const SystemCommand& command);

}  // namespace Tamrix
