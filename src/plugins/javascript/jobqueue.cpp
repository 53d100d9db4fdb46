#include "plugins/javascript/jobqueue.h"

#include <js/GCAPI.h>
#include <jsfriendapi.h>

namespace Tamrix::JavaScriptPlugin {

/// The jobs of the script, while code of the debugger runs.
class JobQueue::Saved final : public SavedJobQueue {
public:
    explicit Saved(JobQueue& queue) : m_queue(queue) { m_jobs.swap(queue.m_jobs); }
    ~Saved() override { m_jobs.swap(m_queue.m_jobs); }

private:
    JobQueue& m_queue;
    std::deque<JS::PersistentRootedObject> m_jobs;
};

JobQueue::~JobQueue() = default;

bool JobQueue::enqueuePromiseJob(JSContext* context, JS::HandleObject, JS::HandleObject job,
                                 JS::HandleObject, JS::HandleObject) {
    m_jobs.emplace_back(context, job);
    return true;
}

bool JobQueue::run(JSContext* context) {
    while (!empty()) {
        JS::RootedObject job(context, m_jobs.front());
        m_jobs.pop_front();
        const JSAutoRealm realm(context, job);
        JS::RootedValue function(context, JS::ObjectValue(*job));
        JS::RootedValue ignored(context);
        // An exception of a job is its promise's; what has none ends the script.
        if (!JS::Call(context, JS::UndefinedHandleValue, function, JS::HandleValueArray::empty(),
                      &ignored))
            return false;
    }
    JS::ClearKeptObjects(context);
    return true;
}

js::UniquePtr<JS::JobQueue::SavedJobQueue> JobQueue::saveJobQueue(JSContext*) {
    return js::UniquePtr<SavedJobQueue>(js_new<Saved>(*this));
}

}  // namespace Tamrix::JavaScriptPlugin
