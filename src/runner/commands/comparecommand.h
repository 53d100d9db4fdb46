#pragma once

#include "runner/commands/commandline.h"

namespace Tamrix {

/// Compares two files and prints the detail that a script's result would carry. Returns
/// ExitSuccess for equal files, ExitFailure for different ones, ExitUsage when an option is wrong
/// or a file can't be read.
int compareFiles(const CommandLine& commandLine);

}  // namespace Tamrix
