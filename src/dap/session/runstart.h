#pragma once

#include "dap/program/program.h"
#include "dap/protocol/messages.h"

namespace Tamrix::Dap {

/// What is started for a launch configuration, whose paths count from the working folder: a run of
/// the suite under the debugger, which keeps its journal and what it attaches to it in the given
/// folder. A suite that is no folder is a failure.
Outcome<ProgramStart> runStart(const QString& runner, const LaunchArguments& arguments,
                               const QString& resultFolder);

}  // namespace Tamrix::Dap
