#include "plugins/javascript/promises.h"

#include <js/Exception.h>
#include <js/Promise.h>

#include <QCoreApplication>
#include <algorithm>

#include "base/blocking.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/jobqueue.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// The longest time without a look at what else is to be done, in seconds.
constexpr double longestSleep = 0.02;

/// A part of a time in which the script waits.
void waitMeanwhile(double seconds) {
    if (RunnerInterface* const runner = Interpreter::currentRunner())
        runner->processEvents();
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
    blockingSleep(static_cast<unsigned long>(std::min(seconds, longestSleep) * 1e6));
}

void throwRejection(JS::HandleObject promise) {
    JSContext* const context = engineContext();
    JS::SetSettledPromiseIsHandled(context, promise);
    JS::RootedValue reason(context, JS::GetPromiseResult(promise));
    JS::RootedObject stack(context);
    if (reason.isObject()) {
        JS::RootedObject error(context, &reason.toObject());
        stack = JS::ExceptionStackOrNull(error);
    }
    const JS::ExceptionStack pending(context, reason, stack);
    JS::SetPendingExceptionStack(context, pending);
    throw ScriptErrorSet();
}

}  // namespace

void settled(JS::MutableHandleValue value) {
    JSContext* const context = engineContext();
    if (!value.isObject())
        return;
    JS::RootedObject promise(context, &value.toObject());
    if (!JS::IsPromiseObject(promise))
        return;
    bool isSettled = false;
    checked(Engine::self().jobs().settle(promise, waitMeanwhile, &isSettled));
    if (!isSettled)
        throwBuiltIn("Error", QStringLiteral("A promise is waited for that nothing will settle"));
    if (JS::GetPromiseState(promise) == JS::PromiseState::Rejected)
        throwRejection(promise);
    value.set(JS::GetPromiseResult(promise));
}

void throwUnhandledRejection() {
    JSContext* const context = engineContext();
    JS::RootedObject promise(context);
    Engine::self().jobs().runJobs(context);
    if (Engine::self().jobs().takeUnhandledRejection(&promise))
        throwRejection(promise);
}

}  // namespace Tamrix::JavaScriptPlugin
