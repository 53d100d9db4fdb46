#include "runner/processes/interrupt.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "base/blocking.h"
#include "runner/processes/supervision.h"

namespace Tamrix {

namespace {

/// One of the signals that end a run, and what was installed for it below our handler.
struct Watched {
    int signal;
    bool installed = false;
    struct sigaction previous {};
    /// The handlers among what was there: one of each language that has run. Which of them is meant
    /// only they know.
    struct sigaction handlers[8]{};
    std::size_t handlerCount = 0;
};

Watched s_watched[] = {{SIGINT}, {SIGTERM}, {SIGHUP}};
Watched& s_keyboardInterrupt = s_watched[0];

/// How often a signal asks before the process ends at once.
constexpr int patience = 3;

/// The process that the handlers were installed in. Children that a script forks have them, too.
std::atomic<pid_t> s_process{0};
std::atomic<int> s_firstSignal{0};
std::atomic<int> s_signalCount{0};
std::atomic<bool> s_isTimeOut{false};
std::atomic<bool> s_isHintLeft{false};
/// The value that comes with the signal of a time-out.
constexpr int timeOutValue = 1;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler uses them");

bool isFunction(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 ||
           (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
}

void call(const struct sigaction& action, int signal, siginfo_t* info, void* context) {
    if ((action.sa_flags & SA_SIGINFO) != 0)
        action.sa_sigaction(signal, info, context);
    else
        action.sa_handler(signal);
}

bool isSameFunction(const struct sigaction& left, const struct sigaction& right) {
    return isFunction(left) && isFunction(right) &&
           (left.sa_flags & SA_SIGINFO) == (right.sa_flags & SA_SIGINFO) &&
           ((left.sa_flags & SA_SIGINFO) != 0 ? left.sa_sigaction == right.sa_sigaction
                                              : left.sa_handler == right.sa_handler);
}

bool isKnown(const Watched& watched, const struct sigaction& action) {
    return std::any_of(
        watched.handlers, watched.handlers + watched.handlerCount,
        [&action](const struct sigaction& each) { return isSameFunction(each, action); });
}

/// Keeps what was found below our handler.
void note(Watched& watched, const struct sigaction& found) {
    watched.previous = found;
    if (isFunction(found) && !isKnown(watched, found) &&
        watched.handlerCount < std::size(watched.handlers))
        watched.handlers[watched.handlerCount++] = found;
}

/// False when there is none to be called.
bool callHandlers(const Watched& watched, siginfo_t* info, void* context) {
    for (std::size_t index = 0; index < watched.handlerCount; ++index)
        call(watched.handlers[index], watched.signal, info, context);
    return watched.handlerCount > 0;
}

/// A signal to a forked child, which is none of the run's business: what happens is what would have
/// happened without our handlers.
void handleInChild(const Watched& watched, siginfo_t* info, void* context) {
    if (!callHandlers(watched, info, context)) {
        ::sigaction(watched.signal, &watched.previous, nullptr);
        ::raise(watched.signal);  // Takes effect when this handler returns.
    }
}

/// Only what is safe in a signal handler.
void handle(int signal, siginfo_t* info, void* context) {
    const int savedErrno = errno;
    if (::getpid() != s_process) {
        for (const Watched& watched : s_watched) {
            if (watched.signal == signal)
                handleInChild(watched, info, context);
        }
        errno = savedErrno;
        return;
    }
    if (Supervision::isSecondDelivery(signal, *info)) {
        errno = savedErrno;
        return;
    }
    int none = 0;
    if (info->si_code == SI_QUEUE && info->si_value.sival_int == timeOutValue &&
        s_firstSignal == none)
        s_isTimeOut = true;
    s_firstSignal.compare_exchange_strong(none, signal);
    const int count = ++s_signalCount;
    if (count >= patience) {
        Supervision::markOrderly();
        ::_exit(Interrupt::exitCode(s_firstSignal));
    }
    if (count == patience - 1 && !s_isHintLeft) {
        static const char s_text[] = "\ntamrixrunner: interrupt once more to end at once\n";
        // Nothing can be done about a text that can't be written.
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, s_text, sizeof s_text - 1);
    }
    for (const Watched& watched : s_watched) {
        if (watched.signal == signal && callHandlers(watched, info, context)) {
            errno = savedErrno;
            return;
        }
    }
    // Languages handle Ctrl-C and leave the others alone: the script shall end in the same way.
    callHandlers(s_keyboardInterrupt, info, context);
    errno = savedErrno;
}

bool isOurs(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == handle;
}

sigset_t watchedSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const Watched& watched : s_watched)
        sigaddset(&set, watched.signal);
    return set;
}

/// Holds the watched signals back and returns the mask that was in force.
sigset_t block() {
    const sigset_t set = watchedSignals();
    sigset_t oldMask;
    pthread_sigmask(SIG_BLOCK, &set, &oldMask);
    return oldMask;
}

void putOnTop() {
    s_process = ::getpid();
    struct sigaction ours;
    std::memset(&ours, 0, sizeof ours);
    ours.sa_sigaction = handle;
    // No SA_RESTART: a script that waits in a system call has to notice.
    ours.sa_flags = SA_SIGINFO | SA_ONSTACK;
    ours.sa_mask = watchedSignals();
    for (Watched& watched : s_watched) {
        struct sigaction current;
        ::sigaction(watched.signal, nullptr, &current);
        const bool ignored =
            !watched.installed && !(current.sa_flags & SA_SIGINFO) && current.sa_handler == SIG_IGN;
        if (ignored || isOurs(current))
            continue;
        note(watched, current);
        watched.installed = true;
        ::sigaction(watched.signal, &ours, nullptr);
    }
}

void takeOff() {
    for (Watched& watched : s_watched) {
        struct sigaction current;
        ::sigaction(watched.signal, nullptr, &current);
        if (isOurs(current))
            ::sigaction(watched.signal, &watched.previous, nullptr);
    }
}

}  // namespace

void Interrupt::install() {
    const sigset_t oldMask = block();
    putOnTop();
    pthread_sigmask(SIG_SETMASK, &oldMask, nullptr);
    setInterruptCheck([] { return signalNumber() != 0; });
}

int Interrupt::signalNumber() {
    return s_firstSignal;
}

bool Interrupt::isTimeOut() {
    return s_isTimeOut;
}

void Interrupt::ask(int process, int signal, bool isTimeOut) {
    sigval value{};
    value.sival_int = isTimeOut ? timeOutValue : 0;
    ::sigqueue(process, signal, value);
}

void Interrupt::leaveHintToOthers() {
    s_isHintLeft = true;
}

void Interrupt::reset() {
    const sigset_t oldMask = block();
    takeOff();
    for (Watched& watched : s_watched)
        watched = {watched.signal};
    s_firstSignal = 0;
    s_signalCount = 0;
    s_isTimeOut = false;
    s_isHintLeft = false;
    pthread_sigmask(SIG_SETMASK, &oldMask, nullptr);
}

Interrupt::Aside::Aside() : m_oldMask(block()) {
    takeOff();
    // Neither does a language find the handlers of those that ran before.
    for (const Watched& watched : s_watched) {
        struct sigaction current;
        ::sigaction(watched.signal, nullptr, &current);
        if (isKnown(watched, current))
            ::signal(watched.signal, SIG_DFL);
    }
}

Interrupt::Aside::~Aside() {
    putOnTop();
    pthread_sigmask(SIG_SETMASK, &m_oldMask, nullptr);
}

}  // namespace Tamrix
