#pragma once

#include "runner/commands/commandline.h"

namespace Tamrix {

/// The program's exit codes; a run that a signal ended has 128 and the signal's number.
enum ExitCode {
    ExitSuccess = 0,  ///< every test case ran and nothing failed, or files are equal
    ExitFailure = 1,  ///< a failed verdict, a script error or a difference of files
    ExitUsage = 2     ///< wrong usage, or a file can't be read or written
};

/// Tells what went wrong on standard error and returns ExitUsage.
int failWith(const QString& text);

/// Does what the command line asks for and returns the exit code. What goes wrong is told in one
/// line each on standard error. Needs a QCoreApplication and TAMRIX_PREFIX in the environment.
int execute(const CommandLine& commandLine);

}  // namespace Tamrix
