#pragma once

#include <unistd.h>

#include <QDeadlineTimer>

namespace Tamrix::Test {

/// Looks again and again until something is so. False when it has not become so: the time is for
/// what comes in a moment where nothing else runs, and only a test that fails takes all of it.
template <typename Condition>
bool waitUntil(const Condition& isSo, int milliseconds = 100'000) {
    constexpr int lookMicroseconds = 10'000;
    const QDeadlineTimer deadline(milliseconds);
    while (!isSo()) {
        if (deadline.hasExpired())
            return false;
        ::usleep(lookMicroseconds);
    }
    return true;
}

}  // namespace Tamrix::Test
