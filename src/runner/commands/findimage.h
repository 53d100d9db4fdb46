#pragma once

namespace Tamrix {

struct CommandLine;

/// Does what "tamrixrunner find-image" is asked to: finds pictures in another one and prints their
/// places to standard output. Returns the program's exit code: ExitSuccess when something was
/// found, ExitFailure when nothing was, ExitUsage with a line on standard error when a picture
/// can't be read, written or searched for.
int findImage(const CommandLine& commandLine);

}  // namespace Tamrix
