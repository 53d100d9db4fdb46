#include "runner/services/backgroundwork.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QScopedValueRollback>
#include <algorithm>
#include <exception>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "platform/testresult/testresult.h"
#include "runner/processes/interrupt.h"

namespace Tamrix {

namespace {

/// How long a sleeping script may take to notice that the run is interrupted.
constexpr qint64 snoozeSliceMilliseconds = 50;

}  // namespace

void BackgroundWork::snooze(double seconds) {
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

void BackgroundWork::processEvents() {
    work();
    QCoreApplication::processEvents();
}

void BackgroundWork::work() {
    m_applications.work();
    reportUnexpectedEnds();
    lookAfterRecordings();
    runHandlers();
    if (Debugger* const debugger = Debugger::self())
        debugger->checkForPauseMessage();
}

void BackgroundWork::reportUnexpectedEnds() {
    for (const UnexpectedEnd& end : m_applications.programs().takeUnexpectedEnds()) {
        if (!m_facts.testResult)
            continue;
        m_facts.testResult->addResult(
            end.isCrash ? TestResult::Error : TestResult::Warning,
            end.isCrash ? QStringLiteral("An application has crashed")
                        : QStringLiteral("An application has ended with an exit code"),
            end.text, m_lastCall.isValid() ? m_lastCall : LineInfo(m_facts.scriptPath, 0));
    }
}

void BackgroundWork::lookAfterRecordings() {
    const QStringList failures = m_recordings.work();
    for (const QString& failure : failures) {
        if (m_facts.testResult) {
            m_facts.testResult->addResult(
                TestResult::Warning, QStringLiteral("A video has ended before its time"), failure,
                m_lastCall.isValid() ? m_lastCall : LineInfo(m_facts.scriptPath, 0));
        }
    }
}

void BackgroundWork::runHandlers() {
    // A handler that waits must not run the next one inside it, and the exception by which a
    // language ends an interrupted script must not end in a handler.
    if (m_isRunningHandlers || m_applications.isInterrupted())
        return;
    const QScopedValueRollback<bool> running(m_isRunningHandlers, true);
    const QList<SharedPtr<Application>> live = m_applications.live();
    for (const SharedPtr<Application>& application : live) {
        for (const auto& [callback, object] : application->access().takeEvents())
            runHandler(callback);
    }
}

void BackgroundWork::runHandler(const QString& callback) {
    Interpreter* const interpreter = Interpreter::self();
    if (!interpreter)
        return;
    const bool isCallable = interpreter->isCallableAvailable(callback);
    // A handler that was taken out while its event was on the way.
    if (!isCallable && !interpreter->hasFunction(callback))
        return;
    const bool isDone =
        isCallable ? interpreter->invokeCallable(callback) : interpreter->invokeFunction(callback);
    if (isDone || !m_facts.testResult)
        return;
    const Interpreter::CallbackError& error = interpreter->callbackError();
    m_facts.testResult->addResult(QDateTime::currentDateTime(), TestResult::Warning,
                                  isCallable
                                      ? QStringLiteral("Script Error in an event handler")
                                      : "Script Error in the event handler '" + callback + "'",
                                  error.message, error.callStack);
}

void BackgroundWork::beginCall() {
    if (m_callDepth++ > 0)
        return;
    m_applications.startCall();
    noteCall();
}

void BackgroundWork::endCall() {
    if (--m_callDepth > 0)
        return;
    // The call that started the first application was not noted before.
    const bool isUnwinding = std::uncaught_exceptions() != 0;
    if (!m_lastCall.isValid() && !isUnwinding)
        noteCall();
    // No handler runs beside an exception that is on its way.
    if (!isUnwinding)
        work();
}

void BackgroundWork::noteCall() {
    const ScriptContext* const context = ScriptContext::current();
    if (context && m_applications.programs().isAnyRunning())
        m_lastCall = context->lineInfoForResult();
}

}  // namespace Tamrix
