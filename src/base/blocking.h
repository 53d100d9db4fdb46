#pragma once

#include <poll.h>

#include "base/export.h"

namespace Tamrix {

/// A time in which the calling thread waits for something outside of the process. The runtime of a
/// script language with a lock of its own releases it meanwhile, so that other threads of the
/// script run. Stands around the waiting call alone: whatever may reach script code or its values
/// is done before or behind it.
class TAMRIX_EXPORT BlockingSection {
public:
    BlockingSection();
    /// Leaves errno as the waiting call has set it.
    ~BlockingSection();
    BlockingSection(const BlockingSection&) = delete;
    BlockingSection& operator=(const BlockingSection&) = delete;

    /// The functions that release and reacquire the lock: `leave` returns the argument of `enter`,
    /// null when nothing was released, as on any thread that does not hold the lock.
    struct Lock {
        void* (*leave)();
        void (*enter)(void* state);
    };
    /// Of the process; the last one counts. Set while nothing waits.
    static void setLock(const Lock& lock);

private:
    void* m_state;
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
