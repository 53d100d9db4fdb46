#include "plugins/javascript/jobqueue.h"

#include <js/GCAPI.h>
#include <jsfriendapi.h>

#include <algorithm>
#include <utility>

namespace Tamrix::JavaScriptPlugin {

/// The jobs of the script, while code of the debugger runs.
class JobQueue::Saved final : public SavedJobQueue {
public:
    explicit Saved(JobQueue& queue)
        : m_queue(queue), m_jobs(queue.m_context), m_first(std::exchange(queue.m_first, 0)) {
        std::swap(m_jobs.get(), m_queue.m_jobs.get());
    }
    ~Saved() override {
        std::swap(m_jobs.get(), m_queue.m_jobs.get());
        m_queue.m_first = m_first;
    }

private:
    JobQueue& m_queue;
    Objects m_jobs;
    std::size_t m_first;
};

JobQueue::JobQueue(JSContext* context)
    : m_context(context), m_jobs(context), m_rejections(context) {
    JS::SetPromiseRejectionTrackerCallback(context, noticeRejection, this);
}

JobQueue::~JobQueue() = default;

JSObject* JobQueue::getIncumbentGlobal(JSContext* context) {
    return JS::CurrentGlobalOrNull(context);
}

bool JobQueue::enqueuePromiseJob(JSContext* context, JS::HandleObject, JS::HandleObject job,
                                 JS::HandleObject, JS::HandleObject) {
    if (m_jobs.append(job))
        return true;
    JS_ReportOutOfMemory(context);
    return false;
}

bool JobQueue::runJob() {
    JS::RootedObject job(m_context, m_jobs[m_first++]);
    if (empty()) {
        m_jobs.clear();
        m_first = 0;
    }
    const JSAutoRealm realm(m_context, job);
    JS::RootedValue function(m_context, JS::ObjectValue(*job));
    JS::RootedValue ignored(m_context);
    return JS::Call(m_context, JS::UndefinedHandleValue, function, JS::HandleValueArray::empty(),
                    &ignored);
}

void JobQueue::runJobs(JSContext*) {
    while (!empty()) {
        if (!runJob()) {
            // An exception of a job is its promise's; what has none ends the script.
            if (!JS_IsExceptionPending(m_context))
                m_isEnded = true;
            return;
        }
    }
    JS::ClearKeptObjects(m_context);
}

bool JobQueue::runTimer() {
    JS::RootedObject function(m_context, m_timers.front().function);
    m_timers.erase(m_timers.begin());
    const JSAutoRealm realm(m_context, function);
    JS::RootedValue value(m_context, JS::ObjectValue(*function));
    JS::RootedValue ignored(m_context);
    return JS::Call(m_context, JS::UndefinedHandleValue, value, JS::HandleValueArray::empty(),
                    &ignored);
}

bool JobQueue::settle(JS::HandleObject promise, void (*wait)(double seconds), bool* isSettled) {
    *isSettled = true;
    while (true) {
        m_isEnded = false;
        runJobs(m_context);
        // What a WeakRef has told of is held until here.
        JS::ClearKeptObjects(m_context);
        if (m_isEnded || JS_IsExceptionPending(m_context))
            return false;
        if (JS::GetPromiseState(promise) != JS::PromiseState::Pending)
            return true;
        if (m_timers.empty()) {
            *isSettled = false;
            return true;
        }
        const std::chrono::duration<double> left = m_timers.front().due - Clock::now();
        if (left.count() > 0)
            wait(left.count());
        if (!JS_CheckForInterrupt(m_context))
            return false;
        if (!m_timers.empty() && m_timers.front().due <= Clock::now() && !runTimer())
            return false;
    }
}

int JobQueue::addTimer(JS::HandleObject function, double milliseconds) {
    // What is no number or too large for a time is a short or a long one.
    const double limited = milliseconds > 0 ? std::min(milliseconds, 1e9) : 0;
    const auto due =
        Clock::now() + std::chrono::microseconds(static_cast<long long>(limited * 1e3));
    const auto place = std::find_if(m_timers.begin(), m_timers.end(),
                                    [due](const Timer& each) { return each.due > due; });
    m_timers.insert(place, Timer{++m_lastTimer, due, {m_context, function}});
    return m_lastTimer;
}

void JobQueue::removeTimer(int number) {
    std::erase_if(m_timers, [number](const Timer& timer) { return timer.number == number; });
}

void JobQueue::noticeRejection(JSContext*, bool, JS::HandleObject promise,
                               JS::PromiseRejectionHandlingState state, void* data) {
    auto& rejections = static_cast<JobQueue*>(data)->m_rejections;
    if (state == JS::PromiseRejectionHandlingState::Unhandled) {
        // Without memory it stays untold.
        static_cast<void>(rejections.append(promise));
        return;
    }
    rejections.eraseIf([&](JSObject* each) { return each == promise; });
}

bool JobQueue::takeUnhandledRejection(JS::MutableHandleObject promise) {
    if (m_rejections.empty())
        return false;
    promise.set(m_rejections[0]);
    m_rejections.erase(m_rejections.begin());
    return true;
}

void JobQueue::clear() {
    m_jobs.clear();
    m_first = 0;
    m_rejections.clear();
    m_timers.clear();
}

js::UniquePtr<JS::JobQueue::SavedJobQueue> JobQueue::saveJobQueue(JSContext*) {
    return js::UniquePtr<SavedJobQueue>(js_new<Saved>(*this));
}

}  // namespace Tamrix::JavaScriptPlugin
