#include "plugins/javascript/jobqueue.h"

#include <jsfriendapi.h>

#include <algorithm>

namespace Tamrix::JavaScriptPlugin {

/// The jobs of the script, while code of the debugger runs.
class JobQueue::Saved final : public SavedJobQueue {
public:
    explicit Saved(JobQueue& queue) : m_queue(queue) { m_jobs.swap(queue.m_jobs); }
    ~Saved() override { m_jobs.swap(m_queue.m_jobs); }

private:
    JobQueue& m_queue;
    Objects m_jobs;
};

JobQueue::JobQueue(JSContext* context) : m_context(context) {
    JS::SetPromiseRejectionTrackerCallback(context, noticeRejection, this);
}

JobQueue::~JobQueue() = default;

JSObject* JobQueue::getIncumbentGlobal(JSContext* context) {
    return JS::CurrentGlobalOrNull(context);
}

bool JobQueue::enqueuePromiseJob(JSContext* context, JS::HandleObject, JS::HandleObject job,
                                 JS::HandleObject, JS::HandleObject) {
    m_jobs.emplace_back(context, job);
    return true;
}

bool JobQueue::call(JS::HandleObject function) {
    const JSAutoRealm realm(m_context, function);
    JS::RootedValue value(m_context, JS::ObjectValue(*function));
    JS::RootedValue ignored(m_context);
    return JS::Call(m_context, JS::UndefinedHandleValue, value, JS::HandleValueArray::empty(),
                    &ignored);
}

void JobQueue::runJobs(JSContext*) {
    while (!empty()) {
        const JS::PersistentRootedObject job = m_jobs.front();
        m_jobs.pop_front();
        if (!call(job)) {
            // An exception of a job is its promise's; what has none ends the script.
            if (!JS_IsExceptionPending(m_context))
                m_isEnded = true;
            return;
        }
    }
    JS::ClearKeptObjects(m_context);
}

bool JobQueue::settle(JS::HandleObject promise, void (*wait)(double seconds)) {
    while (true) {
        m_isEnded = false;
        runJobs(m_context);
        if (m_isEnded || JS_IsExceptionPending(m_context))
            return false;
        if (JS::GetPromiseState(promise) != JS::PromiseState::Pending || m_timers.empty())
            return true;
        const std::chrono::duration<double> left = m_timers.begin()->first - Clock::now();
        if (left.count() > 0)
            wait(left.count());
        if (!JS_CheckForInterrupt(m_context))
            return false;
        if (m_timers.empty() || m_timers.begin()->first > Clock::now())
            continue;
        const JS::PersistentRootedObject function = m_timers.begin()->second.function;
        m_timers.erase(m_timers.begin());
        if (!call(function))
            return false;
    }
}

int JobQueue::addTimer(JS::HandleObject function, double milliseconds) {
    // What is no number or too large for a time is a short or a long one.
    const double limited = milliseconds > 0 ? std::min(milliseconds, 1e9) : 0;
    const auto due =
        Clock::now() + std::chrono::microseconds(static_cast<long long>(limited * 1e3));
    m_timers.emplace(due, Timer{++m_lastTimer, {m_context, function}});
    return m_lastTimer;
}

void JobQueue::removeTimer(int number) {
    std::erase_if(m_timers, [number](const auto& timer) { return timer.second.number == number; });
}

void JobQueue::noticeRejection(JSContext* context, bool, JS::HandleObject promise,
                               JS::PromiseRejectionHandlingState state, void* data) {
    auto& rejections = static_cast<JobQueue*>(data)->m_rejections;
    if (state == JS::PromiseRejectionHandlingState::Unhandled)
        rejections.emplace_back(context, promise);
    else
        std::erase_if(rejections, [&](const auto& each) { return each == promise; });
}

bool JobQueue::takeUnhandledRejection(JS::MutableHandleObject promise) {
    if (m_rejections.empty())
        return false;
    promise.set(m_rejections.front());
    m_rejections.pop_front();
    return true;
}

void JobQueue::clear() {
    m_jobs.clear();
    m_rejections.clear();
    m_timers.clear();
}

js::UniquePtr<JS::JobQueue::SavedJobQueue> JobQueue::saveJobQueue(JSContext*) {
    return js::UniquePtr<SavedJobQueue>(js_new<Saved>(*this));
}

}  // namespace Tamrix::JavaScriptPlugin
