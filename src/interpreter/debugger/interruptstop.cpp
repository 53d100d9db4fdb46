#include "interpreter/debugger/interruptstop.h"

#include <atomic>

#include "interpreter/bridge/debugger.h"

namespace Tamrix {

namespace {

/// Whom the next SIGINT stops; null once it came.
std::atomic<Debugger*> s_target{nullptr};

/// Who installed the handler last; not null means that s_previous holds what was there before.
const Debugger* s_owner = nullptr;
struct sigaction s_previous;

std::atomic<InterruptFilter> s_isPassedOver{nullptr};

void handleInterrupt(int signal, siginfo_t* info, void*) {
    const InterruptFilter isPassedOver = s_isPassedOver;
    if (isPassedOver && isPassedOver(signal, *info))
        return;
    sigaction(signal, &s_previous, nullptr);
    if (Debugger* debugger = s_target.exchange(nullptr))
        debugger->interrupt();
}

}  // namespace

void stopOnInterrupt(Debugger* debugger) {
    s_target = debugger;
    struct sigaction action = {};
    action.sa_sigaction = handleInterrupt;
    sigemptyset(&action.sa_mask);
    // The signal is not held back while the handler runs: a second one has its effect even while
    // the script is stopped in there.
    action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_RESTART;
    sigaction(SIGINT, &action, s_owner ? nullptr : &s_previous);
    s_owner = debugger;
}

bool stopsOnInterrupt(const Debugger* debugger) {
    return s_target == debugger;
}

void setInterruptFilter(InterruptFilter isPassedOver) {
    s_isPassedOver = isPassedOver;
}

void releaseInterrupt(const Debugger* debugger) {
    if (s_owner != debugger)
        return;
    s_target = nullptr;
    s_owner = nullptr;
    sigaction(SIGINT, &s_previous, nullptr);
}

}  // namespace Tamrix
