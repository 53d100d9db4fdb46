#pragma once

#include <memory>
#include <utility>

#include "plugins/javascript/engineapi.h"

namespace Tamrix::JavaScriptPlugin {

class JobQueue;

/// The script engine: started once, alive to the end of the process. It has one context, which
/// belongs to the script thread. What a test case leaves behind goes with its realm.
class Engine {
public:
    /// Starts the engine on first use. Throws std::runtime_error when it can't be started.
    static Engine& self();

    JSContext* context() const { return m_context; }
    JobQueue& jobs() { return *m_jobs; }

    /// What ended running code that no `catch` can stop.
    enum class End { None, Interrupt, Memory, Exit, TimeLimit };
    /// Tells it once.
    End takeEnd() { return std::exchange(m_end, End::None); }
    /// Where the code ran that was ended, as the engine keeps stacks; null when nothing did.
    JSObject* endedStack() const { return m_endedStack; }

    /// The script ends here, in a native function that then fails without an exception. A status
    /// other than 0 tells of a failure.
    void exitNow(int status);
    int exitStatus() const { return m_exitStatus; }

    // What a signal handler may call: the engine notices it at its next loop or call.
    /// Ends the running code.
    void requestEnd(End reason);
    /// Such a request has no effect any more, if it is still to come.
    void forgetRequest(End reason);
    /// Has `stop` called where the script is.
    void requestStop();
    void setStopHandler(void (*stop)()) { m_stop = stop; }

private:
    Engine();
    void noteEnd(End end);
    static bool interrupted(JSContext* context);
    static void collected(JSContext* context, JSGCStatus status, JS::GCReason reason, void* data);

    JSContext* m_context = nullptr;
    std::unique_ptr<JobQueue> m_jobs;
    void (*m_stop)() = nullptr;
    JS::PersistentRootedObject m_endedStack;
    End m_end = End::None;
    int m_exitStatus = 0;
};

/// The context of the engine.
inline JSContext* engineContext() {
    return Engine::self().context();
}

}  // namespace Tamrix::JavaScriptPlugin
