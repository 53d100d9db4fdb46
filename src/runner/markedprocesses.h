#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// Finding all processes that belong to a run, also those that its programs started and that left
/// their process group. The C++ and C libraries alone: the watch program uses it, too.
namespace Tamrix {

/// The variable in the environment of every program that a run starts, which these hand on: the
/// run's name, ":" and a number for the program.
inline constexpr char runMarkVariable[] = "TAMRIX_RUN_MARK";

/// Which processes are meant. Zombies and this process never are.
struct ProcessFilter {
    /// Start of the mark's value; with the number in it, it is to be the whole value.
    std::string mark;
    bool isWholeMark = false;
    /// Processes of this session are meant as well, -1 for none: a program may write over its
    /// environment.
    pid_t session = -1;
};

std::vector<pid_t> findProcesses(const ProcessFilter& filter);

/// Whether the process is one of those meant.
bool isMeant(pid_t process, const ProcessFilter& filter);

/// Asks the processes to end (SIGTERM), and after `patience` milliseconds kills those that are
/// left, also those that came up meanwhile. Returns when none is left, or after a further second
/// with the number of those that can't be ended.
int endProcesses(const ProcessFilter& filter, int patience);

}  // namespace Tamrix
