#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// Finding all processes that belong to a run, also those that its programs started and that left
/// their process group. The C++ and C libraries alone: the watch program uses it, too.
namespace Tamrix {

/// The mark of a program that a run starts is the run's name, ":" and a number for the program. It
/// stands in this variable of the environment, which the program's children inherit.
inline constexpr char runMarkVariable[] = "TAMRIX_RUN_MARK";

/// Marks this process, and whatever comes of it, for good: the mark goes into the soft limit for
/// real-time CPU time, far above any time that a process could use up. The limit stays with a
/// process that clears its environment, leaves its session and its parent, or just becomes another
/// program. Safe between fork and exec. Does nothing where the limit is lowered already.
void markThisProcess(unsigned long long limit);
/// The limit that stands for a mark.
unsigned long long limitOfMark(const std::string& mark);

/// Which processes are meant. Zombies and this process never are.
struct ProcessFilter {
    /// Start of the mark's value; with the number in it, it is to be the whole value.
    std::string mark;
    bool isWholeMark = false;
    /// Processes of this session are meant as well, -1 for none: a program may write over its
    /// environment and lower its limits.
    pid_t session = -1;
};

std::vector<pid_t> findProcesses(const ProcessFilter& filter);

/// Whether the process is one of those meant.
bool isMeant(pid_t process, const ProcessFilter& filter);

/// Asks the processes to end (SIGTERM), and after `patience` milliseconds kills those that are
/// left, also those that came up meanwhile; these go into `killed`, each once. Returns when two
/// looks in a row have found none, or after ten further seconds with the number of those that can't
/// be ended.
int endProcesses(const ProcessFilter& filter, int patience, std::vector<pid_t>* killed = nullptr);

}  // namespace Tamrix
