#pragma once

#include <csignal>
#include <ctime>

#include <atomic>
#include <chrono>

#include "base/export.h"

namespace Tamrix {

/// Limits the time that script code may take while a debugger looks at values or evaluates code:
/// when it is over, `expired` is called, and once more every 20 ms if the code goes on in spite of
/// it. It makes the language end the code, with an exception of its own that scripts don't catch. A
/// signal also ends a system call in which the code waits.
///
/// On the script's thread; inside of another one, the inner `expired` is called for both. Where the
/// system has no timer left there is no limit.
class TAMRIX_EXPORT TimeLimit {
public:
    using Expired = void (*)();
    /// `expired` runs in the handler of the signal: it may do only what a signal handler may.
    TimeLimit(std::chrono::milliseconds time, Expired expired);
    /// Of a time that is over when expire() says so.
    explicit TimeLimit(Expired expired);
    /// Behind it nothing is called any more.
    ~TimeLimit();
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    /// The time is over. On any thread, also in the handler of a signal.
    void expire();
    bool wasExpired() const { return m_wasExpired; }

    /// Whether a limit exists. What the language does late, as at its next line, finds out here
    /// that there is nothing left to end.
    static bool isArmed();
    /// The real-time signal that limits use.
    static int signal() { return SIGRTMAX - 2; }

private:
    timer_t m_timer{};
    bool m_isArmed = false;
    std::atomic<bool> m_wasExpired{false};
    /// What the limit around this one calls.
    Expired m_outer = nullptr;
};

}  // namespace Tamrix
