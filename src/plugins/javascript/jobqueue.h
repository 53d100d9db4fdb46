#pragma once

#include <js/Promise.h>
#include <jsapi.h>

#include <deque>

namespace Tamrix::JavaScriptPlugin {

/// The jobs of promises. Unlike the engine's own queue it can be run while a job runs, as a step of
/// a feature file that waits is called by a script that has waited itself.
///
/// This file and its source know no type of ours: the engine is compiled without run-time type
/// information, and so is what derives from its classes.
class JobQueue final : public JS::JobQueue {
public:
    ~JobQueue() override;

    /// Runs all jobs. False when the script is to end.
    bool run(JSContext* context);
    /// Forgets all, at the end of a test case.
    void clear() { m_jobs.clear(); }

    JSObject* getIncumbentGlobal(JSContext* context) override {
        return JS::CurrentGlobalOrNull(context);
    }
    bool enqueuePromiseJob(JSContext* context, JS::HandleObject promise, JS::HandleObject job,
                           JS::HandleObject allocationSite,
                           JS::HandleObject incumbentGlobal) override;
    void runJobs(JSContext* context) override { run(context); }
    bool empty() const override { return m_jobs.empty(); }

private:
    class Saved;
    js::UniquePtr<SavedJobQueue> saveJobQueue(JSContext* context) override;

    std::deque<JS::PersistentRootedObject> m_jobs;
};

}  // namespace Tamrix::JavaScriptPlugin
