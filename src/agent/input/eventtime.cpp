#include "agent/input/eventtime.h"

#include <QElapsedTimer>

namespace Tamrix::Agent {

namespace {

QElapsedTimer startedTimer() {
    QElapsedTimer timer;
    timer.start();
    return timer;
}

ulong s_last = 0;

}  // namespace

ulong eventTime() {
    static const QElapsedTimer s_clock = startedTimer();
    // Not 0: that stands for an unknown time.
    s_last = qMax(s_last, static_cast<ulong>(s_clock.elapsed()) + 1);
    return s_last;
}

void advanceEventTime(ulong milliseconds) {
    s_last = eventTime() + milliseconds;
}

}  // namespace Tamrix::Agent
