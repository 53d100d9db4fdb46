#include "base/blocking.h"

#include <cerrno>
#include <ctime>

namespace Tamrix {

namespace {

BlockingSection::Lock s_lock = nullptr;

bool (*s_interruptCheck)() = nullptr;

}  // namespace

void BlockingSection::setLock(Lock runWithoutLock) {
    s_lock = runWithoutLock;
}

void BlockingSection::runWithoutLock(void (*work)(void* data), void* data) {
    if (!s_lock) {
        work(data);
        return;
    }
    int error = 0;
    struct Kept {
        void (*work)(void* data);
        void* data;
        int* error;
    } kept{work, data, &error};
    s_lock(
        [](void* each) {
            const auto* const inner = static_cast<Kept*>(each);
            inner->work(inner->data);
            *inner->error = errno;
        },
        &kept);
    errno = error;
}

int blockingPoll(pollfd* watched, nfds_t count, int milliseconds) {
    return BlockingSection::run([=] { return ::poll(watched, count, milliseconds); });
}

void blockingSleep(unsigned long microseconds) {
    constexpr unsigned long second = 1'000'000;
    const timespec time = {static_cast<time_t>(microseconds / second),
                           static_cast<long>(microseconds % second * 1000)};
    BlockingSection::run([&] { ::nanosleep(&time, nullptr); });
}

bool isInterrupted() {
    return s_interruptCheck && s_interruptCheck();
}

void setInterruptCheck(bool (*check)()) {
    s_interruptCheck = check;
}

}  // namespace Tamrix
