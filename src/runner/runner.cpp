#include "runner/runner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>

#include "runner/interrupt.h"

namespace Tamrix {

namespace {

/// How long a sleeping script may take to notice that the run is interrupted.
constexpr qint64 snoozeSliceMilliseconds = 50;

}  // namespace

void Runner::setTestCase(const QString& name, const QString& scriptPath) {
    m_caseName = name;
    m_scriptPath = scriptPath;
    m_imageSearchFixTarget = 0;
}

void Runner::snooze(double seconds) {
    // The comparison is written so that "not a number" does not sleep at all.
    const double wanted = seconds > 0 ? std::min(seconds * 1000.0, 1e15) : 0;
    QElapsedTimer sinceStart;
    sinceStart.start();
    processEvents();
    while (Interrupt::signalNumber() == 0) {
        const qint64 left = static_cast<qint64>(wanted) - sinceStart.elapsed();
        if (left <= 0)
            break;
        QEventLoop loop;
        QTimer::singleShot(static_cast<int>(std::min(left, snoozeSliceMilliseconds)),
                           Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

void Runner::processEvents() {
    QCoreApplication::processEvents();
}

}  // namespace Tamrix
