#include <QCoreApplication>
#include <QElapsedTimer>

#include "base/blocking.h"
#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/objectfunctions.h"
#include "interpreter/generic/runneraccess.h"

namespace Tamrix {

namespace {

/// Pauses by the time that a wait has taken so far: the first step that covers it counts.
constexpr struct {
    qint64 upToMilliseconds;
    unsigned long microseconds;
} pauses[] = {{1000, 100000}, {2000, 333000}, {3000, 666000}};
constexpr unsigned long longestPause = 1000000;

/// Whether the condition, an expression or a callable, holds now. An error lands in `*error`.
bool holds(ScriptContext* context, const SharedPtr<ScriptArgument>& condition, QString* error) {
    if (condition->isString())
        return context->evaluateCondition(condition->toString(), error);
    // Only a bool counts: any other value is false.
    const SharedPtr<ScriptArgument> value = condition->call({}, error);
    return value && value->isBool() && value->toBool();
}

}  // namespace

unsigned long waitForPause(qint64 elapsed) {
    for (const auto& pause : pauses) {
        if (elapsed <= pause.upToMilliseconds)
            return pause.microseconds;
    }
    return longestPause;
}

bool snooze(ScriptContext* context) {
    const ActionRecord record(context, "snooze");
    if (context->argumentCount() != 1 || !context->argument(0)->isNumber()) {
        context->setError("snooze() requires a time argument");
        return false;
    }
    if (RunnerInterface* runner = runnerFor("snooze"))
        runner->snooze(context->argument(0)->toDouble());
    return true;
}

void waitFor(ScriptContext* context) {
    const ActionRecord record(context, "waitFor");
    // 1. The condition and the time-out in milliseconds, where -1 is no limit.
    const int count = context->argumentCount();
    if (count < 1 || count > 2) {
        context->setError("waitFor(expression|callable, [timeout])");
        return;
    }
    const SharedPtr<ScriptArgument> condition = context->argument(0);
    if (!condition->isString() && !condition->isCallable()) {
        context->setError("waitFor() argument has to be a callable or a string");
        return;
    }
    double timeout = -1.0;
    if (count == 2) {
        if (!context->argument(1)->isNumber()) {
            context->setError("Invalid type of timeout value");
            return;
        }
        timeout = context->argument(1)->toDouble();
    }
    // 2. The time starts.
    QElapsedTimer timer;
    timer.start();
    // 3. One round after the other:
    while (true) {
        // a. a look at the condition,
        QString error;
        const bool isTrue = holds(context, condition, &error);
        // b. whose error ends the wait,
        if (!error.isEmpty()) {
            context->setError(error);
            return;
        }
        // c. as its truth does;
        if (isTrue) {
            context->setBoolResult(true);
            return;
        }
        // d. runner and debugger work meanwhile;
        if (RunnerInterface* runner = Interpreter::currentRunner())
            runner->processEvents();
        if (QCoreApplication::instance())
            QCoreApplication::processEvents();
        // e. the time may be over;
        const qint64 elapsed = timer.elapsed();
        if (timeout >= 0 && static_cast<double>(elapsed) > timeout) {
            context->setBoolResult(false);
            return;
        }
        // f. a pause.
        blockingSleep(waitForPause(elapsed));
    }
}

}  // namespace Tamrix
