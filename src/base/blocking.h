#pragma once

#include <poll.h>

#include <optional>
#include <type_traits>
#include <utility>

#include "base/export.h"

namespace Tamrix {

/// A time in which the calling thread waits for something outside of the process. The runtime of a
/// script language with a lock of its own releases it meanwhile, so that other threads of the
/// script run. It is around the waiting call alone: whatever may reach script code or its values is
/// done before or behind it.
class TAMRIX_EXPORT BlockingSection {
public:
    /// Waits in `work`, which must not throw, and gives what it gives; errno is left as it has set
    /// it.
    template <typename Work>
    static auto run(Work work) -> decltype(work()) {
        if constexpr (std::is_void_v<decltype(work())>) {
            runWithoutLock([](void* data) { (*static_cast<Work*>(data))(); }, &work);
        } else {
            std::optional<decltype(work())> result;
            auto store = [&] { result.emplace(work()); };
            runWithoutLock([](void* data) { (*static_cast<decltype(store)*>(data))(); }, &store);
            return std::move(*result);
        }
    }

    /// Runs `work` once, with `data`, while the language's lock is released, as far as the calling
    /// thread holds it.
    using Lock = void (*)(void (*work)(void* data), void* data);
    /// Of the process; the last one counts. Set while nothing waits.
    static void setLock(Lock runWithoutLock);

private:
    static void runWithoutLock(void (*work)(void* data), void* data);
};

/// poll() as a blocking section.
TAMRIX_EXPORT int blockingPoll(pollfd* watched, nfds_t count, int milliseconds);

/// Sleeps, as a blocking section; a signal may end the sleep early.
TAMRIX_EXPORT void blockingSleep(unsigned long microseconds);

/// Whether the user has asked for the end of the run, as by Ctrl-C: long waits then end early. Any
/// thread. Without a check, which the program installs before anything waits, nobody ever asks.
TAMRIX_EXPORT bool isInterrupted();
TAMRIX_EXPORT void setInterruptCheck(bool (*check)());

}  // namespace Tamrix
