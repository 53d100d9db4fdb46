#pragma once

#include <csignal>
#include <ctime>

#include <chrono>

#include "base/export.h"

namespace Tamrix {

/// Limits the time that script code may take while a debugger looks at values: when it is over,
/// `expired` is called, and once more every 20 ms if the code goes on in spite of it. It makes the
/// language end the code, with an exception of its own that scripts don't catch. A signal also ends
/// a system call in which the code waits.
///
/// For one at a time, on the script's thread. Where the system has no timer left there is no limit.
class TAMRIX_EXPORT TimeLimit {
public:
    /// `expired` runs in the handler of the signal: it may do only what a signal handler may.
    TimeLimit(std::chrono::milliseconds time, void (*expired)());
    /// Behind it nothing is called any more.
    ~TimeLimit();
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    /// Whether a limit exists. What the language does late, as at its next line, finds out here
    /// that there is nothing left to end.
    static bool isArmed();
    /// The real-time signal that limits use.
    static int signal() { return SIGRTMAX - 2; }

private:
    timer_t m_timer{};
    bool m_isArmed = false;
};

}  // namespace Tamrix
