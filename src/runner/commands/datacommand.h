#pragma once

namespace Tamrix {

struct CommandLine;

/// Does what "tamrixrunner data" is asked to: prints the table of a file as scripts see it. Returns
/// the program's exit code as ExitCode; what goes wrong is told on standard error.
int printTestData(const CommandLine& commandLine);

}  // namespace Tamrix
