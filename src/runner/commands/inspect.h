#pragma once

#include <QString>

namespace Tamrix {

struct CommandLine;

/// Does what "tamrixrunner inspect" is asked to: starts a program, prints its objects to standard
/// output and ends it. Returns the program's exit code as ExitCode; what goes wrong is told on
/// standard error.
int inspectApplication(const CommandLine& commandLine);

}  // namespace Tamrix
