#include "plugins/javascript/promises.h"

#include <QCoreApplication>
#include <algorithm>

#include "base/blocking.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/jobqueue.h"

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

[[noreturn]] void throwRejection(JS::HandleObject promise) {
    JSContext* const context = engineContext();
    JS::SetSettledPromiseIsHandled(context, promise);
    const ValueRoot reason(JS::GetPromiseResult(promise));
    const ObjectRoot error(reason);
    const ObjectRoot stack(error ? JS::ExceptionStackOrNull(error) : nullptr);
    JS::SetPendingExceptionStack(context, JS::ExceptionStack(context, reason, stack));
    throw ScriptErrorSet();
}

}  // namespace

void settled(JS::MutableHandleValue value) {
    const ObjectRoot promise(value.get());
    if (!promise || !JS::IsPromiseObject(promise))
        return;
    checked(Engine::self().jobs().settle(promise, waitMeanwhile));
    const JS::PromiseState state = JS::GetPromiseState(promise);
    if (state == JS::PromiseState::Pending)
        throwBuiltIn(JSEXN_ERR, QStringLiteral("A promise is waited for that nothing will settle"));
    if (state == JS::PromiseState::Rejected)
        throwRejection(promise);
    value.set(JS::GetPromiseResult(promise));
}

void throwUnhandledRejection() {
    ObjectRoot promise;
    Engine::self().jobs().runJobs(engineContext());
    if (Engine::self().jobs().takeUnhandledRejection(&promise))
        throwRejection(promise);
}

}  // namespace Tamrix::JavaScriptPlugin
