#include "interpreter/language/timelimit.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace Tamrix {

namespace {

/// How soon the language is told once more.
constexpr std::chrono::milliseconds repetition{20};

std::atomic<TimeLimit::Expired> s_expired{nullptr};

void handleSignal(int) {
    const int before = errno;
    // A signal that comes late finds nobody to tell.
    if (const TimeLimit::Expired expired = s_expired)
        expired();
    errno = before;
}

timespec toTimeSpec(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {seconds.count(), std::chrono::nanoseconds(time - seconds).count()};
}

bool setHandler() {
    struct sigaction action = {};
    action.sa_handler = handleSignal;
    // Waiting calls end early: without SA_RESTART.
    return sigaction(TimeLimit::signal(), &action, nullptr) == 0;
}

}  // namespace

TimeLimit::TimeLimit(std::chrono::milliseconds time, Expired expired) : TimeLimit(expired) {
    if (!m_isArmed)
        return;
    const itimerspec times{toTimeSpec(repetition), toTimeSpec(time)};
    timer_settime(m_timer, 0, &times, nullptr);
}

TimeLimit::TimeLimit(Expired expired) {
    if (!setHandler())
        return;
    // The signal goes to this thread, so that it ends what the thread waits for.
    sigevent event = {};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = signal();
    event._sigev_un._tid = gettid();
    if (timer_create(CLOCK_MONOTONIC, &event, &m_timer) != 0)
        return;
    m_isArmed = true;
    m_outer = s_expired.exchange(expired);
}

TimeLimit::~TimeLimit() {
    if (!m_isArmed)
        return;
    s_expired = m_outer;
    timer_delete(m_timer);
}

void TimeLimit::expire() {
    m_wasExpired = true;
    if (!m_isArmed)
        return;
    // A time of nothing would stop the timer.
    const itimerspec times{toTimeSpec(repetition), {0, 1}};
    timer_settime(m_timer, 0, &times, nullptr);
}

bool TimeLimit::isArmed() {
    return s_expired != nullptr;
}

}  // namespace Tamrix
