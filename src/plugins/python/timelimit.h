#pragma once

#include <csignal>
#include <ctime>

#include <chrono>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Limits the time that script code may take: when it is over, an exception is raised in the code,
/// also while it sleeps or waits for something, and once more if the code goes on in spite of it.
/// What can't be interrupted is C code that asks Python for nothing.
///
/// For one at a time, on Python's main thread. On another thread, or when the system has no timer
/// left, there is no limit.
class TimeLimit {
public:
    explicit TimeLimit(std::chrono::milliseconds time);
    ~TimeLimit();
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    /// Whether the exception that is set is the limit's.
    static bool isExceeded();

private:
    timer_t m_timer{};
    bool m_isArmed = false;
};

}  // namespace Tamrix::PythonPlugin
