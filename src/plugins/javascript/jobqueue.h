#pragma once

#include <js/Promise.h>
#include <jsapi.h>

#include <chrono>
#include <deque>
#include <map>

namespace Tamrix::JavaScriptPlugin {

/// What waits for its turn in a script: jobs of promises, and timers. Unlike the engine's own queue
/// it can be run while a job runs, as a step of a feature file that waits is called by a script
/// that has waited itself.
///
/// This file and its source know no type of ours: the engine is compiled without run-time type
/// information, and so is what derives from its classes.
class JobQueue final : public JS::JobQueue {
public:
    explicit JobQueue(JSContext* context);
    ~JobQueue() override;

    /// Runs jobs and timers until the promise is settled; `wait` sleeps for a time, or a part of
    /// it, or until nothing is left that could settle it. False when the script is to end.
    bool settle(JS::HandleObject promise, void (*wait)(double seconds));

    /// Calls the function once the time is over, if anybody waits then. Gives the timer's number.
    int addTimer(JS::HandleObject function, double milliseconds);
    void removeTimer(int number);

    /// The promises that were rejected without anybody looking at it, each told once.
    bool takeUnhandledRejection(JS::MutableHandleObject promise);
    /// Forgets all, at the end of a test case.
    void clear();

    JSObject* getIncumbentGlobal(JSContext* context) override;
    bool enqueuePromiseJob(JSContext* context, JS::HandleObject promise, JS::HandleObject job,
                           JS::HandleObject allocationSite,
                           JS::HandleObject incumbentGlobal) override;
    void runJobs(JSContext* context) override;
    bool empty() const override { return m_jobs.empty(); }

private:
    using Clock = std::chrono::steady_clock;
    using Objects = std::deque<JS::PersistentRootedObject>;
    struct Timer {
        int number;
        JS::PersistentRootedObject function;
    };

    class Saved;
    js::UniquePtr<SavedJobQueue> saveJobQueue(JSContext* context) override;

    bool call(JS::HandleObject function);
    static void noticeRejection(JSContext* context, bool isMuted, JS::HandleObject promise,
                                JS::PromiseRejectionHandlingState state, void* data);

    JSContext* m_context;
    Objects m_jobs;
    Objects m_rejections;
    std::multimap<Clock::time_point, Timer> m_timers;
    int m_lastTimer = 0;
    bool m_isEnded = false;
};

}  // namespace Tamrix::JavaScriptPlugin
