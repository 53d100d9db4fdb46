#include "runner/processes/lastlook.h"

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace Tamrix {

namespace {

std::function<void()> s_look;
std::function<void()> s_done;
pid_t s_process = 0;

/// A real-time signal that nothing else in a test run uses.
int lookSignal() {
    return SIGRTMAX - 4;
}

[[noreturn]] void lookInCopy() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // A lock that was held when the copy was made is held for ever in it.
    struct sigaction ending {};
    ending.sa_handler = SIG_DFL;
    ::sigaction(SIGALRM, &ending, nullptr);
    sigset_t alarmOnly;
    sigemptyset(&alarmOnly);
    sigaddset(&alarmOnly, SIGALRM);
    ::sigprocmask(SIG_UNBLOCK, &alarmOnly, nullptr);
    ::alarm(LastLook::patience);
    s_look();
    ::_exit(0);
}

void handle(int signal) {
    const int savedErrno = errno;
    if (::getpid() == s_process && ::gettid() != s_process) {
        // The script runs on the main thread.
        ::syscall(SYS_tgkill, s_process, s_process, signal);
    } else if (::getpid() == s_process) {
        // What other code does at a fork may wait for what this thread was interrupted in.
        const pid_t copy = ::_Fork();
        if (copy == 0)
            lookInCopy();
        while (copy > 0 && ::waitpid(copy, nullptr, 0) < 0 && errno == EINTR)
            continue;
        s_done();
    }
    errno = savedErrno;
}

}  // namespace

void LastLook::prepare(std::function<void()> look, std::function<void()> done) {
    s_look = std::move(look);
    s_done = std::move(done);
    s_process = ::getpid();
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = handle;
    // On the stack of the script: what languages have beside it for signals is small.
    action.sa_flags = SA_RESTART;
    ::sigaction(lookSignal(), &action, nullptr);
}

void LastLook::ask(pid_t process) {
    ::kill(process, lookSignal());
}

}  // namespace Tamrix
