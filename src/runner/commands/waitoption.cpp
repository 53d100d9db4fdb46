#include "runner/commands/waitoption.h"

#include <QDeadlineTimer>
#include <algorithm>

namespace Tamrix {

Outcome<double> readWaitSeconds(const QString& text) {
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0 && seconds <= 3600))
        return wrongUsage(QStringLiteral("--wait takes a number of seconds, not '%1'").arg(text));
    return seconds;
}

void letSettle(Applications& applications, double seconds) {
    const QDeadlineTimer deadline(static_cast<qint64>(seconds * 1000));
    while (!deadline.hasExpired() && !applications.isInterrupted())
        applications.waitForNews(static_cast<int>(std::min<qint64>(deadline.remainingTime(), 50)));
}

}  // namespace Tamrix
