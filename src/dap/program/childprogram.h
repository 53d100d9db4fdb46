#pragma once

#include "dap/program/program.h"

namespace Tamrix::Dap {

/// Starts a program as a child of this process: in a group of its own, so that a terminal's Ctrl-C
/// does not reach it, and asked to end (SIGTERM) when this process ends, however that happens. It
/// is killed together with the object if it still runs then. This process ignores SIGPIPE.
///
/// By hand, since QProcess reads in an event loop, which would have to run inside every question to
/// the debugger.
Outcome<std::unique_ptr<Program>> startChildProgram(const ProgramStart& start);

}  // namespace Tamrix::Dap
