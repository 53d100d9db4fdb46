#include "runner/services/runner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QScopedValueRollback>
#include <algorithm>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "platform/testresult/testresult.h"
#include "runner/processes/interrupt.h"

namespace Tamrix {

namespace {

/// How long a sleeping script may take to notice that the run is interrupted.
constexpr qint64 snoozeSliceMilliseconds = 50;

}  // namespace

void Runner::setTestCase(const QString& name, const QString& scriptPath) {
    m_caseName = name;
    m_scriptPath = scriptPath;
    m_imageSearchFixTarget = 0;
    m_lastCall = LineInfo();
}

QString Runner::objectMapPath() {
    return m_places.suiteDirectory.isEmpty()
               ? QString()
               : m_places.suiteDirectory + QLatin1String("/shared/objectnames.tsv");
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
        m_applications.waitForNews(static_cast<int>(std::min(left, snoozeSliceMilliseconds)));
        work();
    }
}

void Runner::processEvents() {
    work();
    QCoreApplication::processEvents();
}

void Runner::work() {
    m_applications.work();
    reportUnexpectedEnds();
    runHandlers();
    if (Debugger* const debugger = Debugger::self())
        debugger->checkForPauseMessage();
}

void Runner::reportUnexpectedEnds() {
    for (const UnexpectedEnd& end : m_applications.programs().takeUnexpectedEnds()) {
        if (!m_testResult)
            continue;
        m_testResult->addResult(
            end.isCrash ? TestResult::Error : TestResult::Warning,
            end.isCrash ? QStringLiteral("An application has crashed")
                        : QStringLiteral("An application has ended with an exit code"),
            end.text, m_lastCall.isValid() ? m_lastCall : LineInfo(m_scriptPath, 0));
    }
}

void Runner::runHandlers() {
    // A handler that waits must not run the next one inside it, and the exception by which a
    // language ends an interrupted script must not end in a handler.
    if (m_isRunningHandlers || m_applications.isInterrupted())
        return;
    const QScopedValueRollback<bool> running(m_isRunningHandlers, true);
    for (const SharedPtr<Application>& application : m_applications.live()) {
        for (const auto& [callback, object] : application->model().takeEvents())
            runHandler(callback);
    }
}

void Runner::runHandler(const QString& callback) {
    Interpreter* const interpreter = Interpreter::self();
    if (!interpreter)
        return;
    const bool isCallable = interpreter->isCallableAvailable(callback);
    // A handler that was taken out while its event was on the way.
    if (!isCallable && !interpreter->hasFunction(callback))
        return;
    const bool isDone =
        isCallable ? interpreter->invokeCallable(callback) : interpreter->invokeFunction(callback);
    if (isDone || !m_testResult)
        return;
    const Interpreter::CallbackError& error = interpreter->callbackError();
    m_testResult->addResult(QDateTime::currentDateTime(), TestResult::Warning,
                            isCallable ? QStringLiteral("Script Error in an event handler")
                                       : "Script Error in the event handler '" + callback + "'",
                            error.message, error.callStack);
}

}  // namespace Tamrix
