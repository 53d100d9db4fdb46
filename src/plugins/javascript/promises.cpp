#include "plugins/javascript/promises.h"

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <deque>
#include <map>

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

using Clock = std::chrono::steady_clock;

/// Of the running script.
struct Waiting {
    Waiting() { JS::SetPromiseRejectionTrackerCallback(engineContext(), noticeRejection, this); }
    /// Never destroyed, as the engine.
    static Waiting& self() {
        static auto* const s_self = new Waiting;
        return *s_self;
    }
    static void noticeRejection(JSContext*, bool, JS::HandleObject promise,
                                JS::PromiseRejectionHandlingState state, void* self) {
        auto& rejections = static_cast<Waiting*>(self)->rejections;
        if (state == JS::PromiseRejectionHandlingState::Unhandled)
            rejections.emplace_back(promise);
        else
            std::erase_if(rejections, [&](const auto& each) { return each == promise; });
    }

    struct Timer {
        int number;
        ObjectRoot function;
    };
    std::multimap<Clock::time_point, Timer> timers;
    int lastTimer = 0;
    /// Promises that were rejected without anybody looking at it.
    std::deque<ObjectRoot> rejections;
};

/// A part of a time in which the script waits.
void waitMeanwhile(double seconds) {
    if (RunnerInterface* const runner = Interpreter::currentRunner())
        runner->processEvents();
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
    blockingSleep(static_cast<unsigned long>(std::min(seconds, longestSleep) * 1e6));
}

/// Waits for the next timer, or a part of that time, and runs it.
void runTimer(std::multimap<Clock::time_point, Waiting::Timer>& timers) {
    const std::chrono::duration<double> left = timers.begin()->first - Clock::now();
    if (left.count() > 0)
        waitMeanwhile(left.count());
    checked(JS_CheckForInterrupt(engineContext()));
    if (timers.empty() || timers.begin()->first > Clock::now())
        return;
    const ValueRoot function(JS::ObjectValue(*timers.begin()->second.function));
    timers.erase(timers.begin());
    resultOf(function, JS::HandleValueArray::empty());
}

[[noreturn]] void throwRejection(JS::HandleObject promise) {
    JS::SetSettledPromiseIsHandled(engineContext(), promise);
    const ValueRoot reason(JS::GetPromiseResult(promise));
    const ObjectRoot error(reason);
    throwWithStack(reason, ObjectRoot(error ? JS::ExceptionStackOrNull(error) : nullptr));
}

}  // namespace

void settled(JS::MutableHandleValue value) {
    const ObjectRoot promise(value.get());
    if (!promise || !JS::IsPromiseObject(promise))
        return;
    auto& timers = Waiting::self().timers;
    while (true) {
        checked(Engine::self().jobs().run(engineContext()));
        const JS::PromiseState state = JS::GetPromiseState(promise);
        if (state == JS::PromiseState::Rejected)
            throwRejection(promise);
        if (state == JS::PromiseState::Fulfilled)
            return value.set(JS::GetPromiseResult(promise));
        if (timers.empty())
            throwBuiltIn(JSProto_Error,
                         QStringLiteral("A promise is waited for that nothing will settle"));
        runTimer(timers);
    }
}

void throwUnhandledRejection() {
    auto& rejections = Waiting::self().rejections;
    checked(Engine::self().jobs().run(engineContext()));
    if (rejections.empty())
        return;
    const ObjectRoot promise(rejections.front());
    rejections.pop_front();
    throwRejection(promise);
}

int addTimer(JS::HandleObject function, double milliseconds) {
    Waiting& waiting = Waiting::self();
    // What is no number or too large for a time is a short or a long one.
    const double limited = milliseconds > 0 ? std::min(milliseconds, 1e9) : 0;
    const auto time = std::chrono::microseconds(static_cast<long long>(limited * 1e3));
    waiting.timers.insert({Clock::now() + time, {++waiting.lastTimer, ObjectRoot(function)}});
    return waiting.lastTimer;
}

void removeTimer(int number) {
    std::erase_if(Waiting::self().timers,
                  [number](const auto& timer) { return timer.second.number == number; });
}

void stopWaiting() {
    Engine::self().jobs().clear();
    Waiting::self().rejections.clear();
    Waiting::self().timers.clear();
}

}  // namespace Tamrix::JavaScriptPlugin
