#include "runner/processes/supervision.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>

#include "runner/processes/processend.h"

namespace Tamrix {

namespace {

/// How far apart the two signals of one to the whole group may be.
constexpr long long deliveryMilliseconds = 1000;

/// Seen by both processes.
struct SharedState {
    std::atomic<bool> isOrderly;
    std::atomic<bool> isQuit;
    std::atomic<bool> isHandedOver;
};
static_assert(std::atomic<bool>::is_always_lock_free, "two processes and a signal handler use it");

SharedState* s_shared = nullptr;

/// How the process treated signals before it had a child.
struct SignalTreatment {
    struct sigaction childAction;
    sigset_t mask;
};
std::optional<SignalTreatment> s_before;
/// -1 in a process that has none.
std::atomic<pid_t> s_supervisor{-1};

/// When signals came that may have come twice, in milliseconds; 0 for none.
struct Deliveries {
    std::atomic<long long> byItself{0};
    std::atomic<long long> handedOn{0};
};
std::array<Deliveries, NSIG> s_deliveries;
static_assert(std::atomic<long long>::is_always_lock_free, "a signal handler uses them");

sigset_t waitedSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD})
        sigaddset(&set, signal);
    return set;
}

Supervision::End waitFor(pid_t child) {
    const sigset_t signals = waitedSignals();
    int status = 0;
    pid_t ended = 0;
    int lastSignal = 0;
    while ((ended = ::waitpid(child, &status, WNOHANG)) == 0 || (ended < 0 && errno == EINTR)) {
        siginfo_t info{};
        const int signal = ::sigwaitinfo(&signals, &info);
        if (signal <= 0 || signal == SIGCHLD)
            continue;
        lastSignal = signal;
        // The terminal sends its own signals to the child as well.
        if (info.si_code != SI_KERNEL)
            ::sigqueue(child, signal, {});
    }
    const ProcessEnd how = ended == child ? processEnd(status) : ProcessEnd();
    Supervision::End end;
    // A signal from outside that came before, or in spite of, the handlers of the run.
    const bool isAsked = how.signal != 0 && how.signal == lastSignal;
    end.isOrderly = s_shared->isOrderly || isAsked;
    end.isQuit = s_shared->isQuit;
    end.isHandedOver = s_shared->isHandedOver.exchange(false);
    end.exitCode = how.exitCode;
    end.text = how.text;
    return end;
}

/// In the child: ends with its supervisor.
void becomeSupervised(pid_t supervisor) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != supervisor)
        ::_exit(1);
    s_supervisor = supervisor;
}

}  // namespace

std::optional<Supervision::End> Supervision::begin() {
    if (!s_shared) {
        void* const memory = ::mmap(nullptr, sizeof(SharedState), PROT_READ | PROT_WRITE,
                                    MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            return std::nullopt;
        s_shared = new (memory) SharedState{false, false, false};
    }
    if (!s_before) {
        s_before.emplace();
        // A process that is started with SIGCHLD ignored never learns how its children end.
        struct sigaction defaultAction {};
        defaultAction.sa_handler = SIG_DFL;
        ::sigaction(SIGCHLD, &defaultAction, &s_before->childAction);
        const sigset_t waited = waitedSignals();
        ::sigprocmask(SIG_BLOCK, &waited, &s_before->mask);
    }

    const pid_t supervisor = ::getpid();
    const pid_t child = ::fork();
    if (child > 0)
        return waitFor(child);
    if (child == 0)
        becomeSupervised(supervisor);
    ::sigaction(SIGCHLD, &s_before->childAction, nullptr);
    ::sigprocmask(SIG_SETMASK, &s_before->mask, nullptr);
    return std::nullopt;
}

bool Supervision::isSupervised() {
    return s_supervisor >= 0;
}

bool Supervision::isAskedToEnd() {
    sigset_t pending;
    ::sigpending(&pending);
    return sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1 ||
           sigismember(&pending, SIGHUP) == 1;
}

pid_t Supervision::startWorker() {
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0)
        becomeSupervised(parent);
    return child;
}

void Supervision::markOrderly() {
    if (s_shared)
        s_shared->isOrderly = true;
}

void Supervision::markQuit() {
    if (s_shared)
        s_shared->isQuit = true;
}

void Supervision::markHandedOver() {
    if (s_shared)
        s_shared->isHandedOver = true;
}

bool Supervision::isSecondDelivery(int signal, const siginfo_t& info) {
    if (s_supervisor < 0 || info.si_code == SI_KERNEL || signal <= 0 || signal >= NSIG)
        return false;
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    const long long now = time.tv_sec * 1000LL + time.tv_nsec / 1000000;
    Deliveries& deliveries = s_deliveries[static_cast<size_t>(signal)];
    const bool isHandedOn = info.si_code == SI_QUEUE && info.si_pid == s_supervisor;
    std::atomic<long long>& other = isHandedOn ? deliveries.byItself : deliveries.handedOn;
    if (other != 0 && now - other < deliveryMilliseconds) {
        other = 0;
        return true;
    }
    (isHandedOn ? deliveries.handedOn : deliveries.byItself) = now;
    return false;
}

}  // namespace Tamrix
