#pragma once

#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix {

/// Holds the runner's remote object model for the time of one script call. Without a runner, and
/// after an acquire that gave nothing, it does nothing. Giving it back may run event handlers of
/// the script, and an exception by which one of them ends the script passes.
class RemoteObjectModelHolder {
public:
    explicit RemoteObjectModelHolder(RunnerInterface* runner)
        : m_runner(runner && runner->acquireRemoteObjectModel() ? runner : nullptr) {}
    ~RemoteObjectModelHolder() noexcept(false) {
        if (m_runner)
            m_runner->releaseRemoteObjectModel();
    }
    RemoteObjectModelHolder(const RemoteObjectModelHolder&) = delete;
    RemoteObjectModelHolder& operator=(const RemoteObjectModelHolder&) = delete;

private:
    RunnerInterface* m_runner;
};

}  // namespace Tamrix
