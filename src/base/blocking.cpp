#include "base/blocking.h"

#include <cerrno>
#include <ctime>

namespace Tamrix {

namespace {

BlockingSection::Lock s_lock{};

bool (*s_interruptCheck)() = nullptr;

}  // namespace

void BlockingSection::setLock(const Lock& lock) {
    s_lock = lock;
}

BlockingSection::BlockingSection() : m_state(s_lock.leave ? s_lock.leave() : nullptr) {}

BlockingSection::~BlockingSection() {
    if (!m_state)
        return;
    const int error = errno;
    s_lock.enter(m_state);
    errno = error;
}

int blockingPoll(pollfd* watched, nfds_t count, int milliseconds) {
    const BlockingSection section;
    return ::poll(watched, count, milliseconds);
}

void blockingSleep(unsigned long microseconds) {
    constexpr unsigned long second = 1'000'000;
    const timespec time = {static_cast<time_t>(microseconds / second),
                           static_cast<long>(microseconds % second * 1000)};
    const BlockingSection section;
    ::nanosleep(&time, nullptr);
}

bool isInterrupted() {
    return s_interruptCheck && s_interruptCheck();
}

void setInterruptCheck(bool (*check)()) {
    s_interruptCheck = check;
}

}  // namespace Tamrix
