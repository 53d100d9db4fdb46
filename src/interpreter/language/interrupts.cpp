#include "interpreter/language/interrupts.h"

#include <csignal>

namespace Tamrix {

void handleInterrupts(void (*handler)(int)) {
    struct sigaction action = {};
    if (sigaction(SIGINT, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action = {};
    action.sa_handler = handler;
    sigaction(SIGINT, &action, nullptr);
}

}  // namespace Tamrix
