#pragma once

#include <functional>

#include "interpreter/bridge/runnerinterface.h"
#include "runner/services/runstate.h"

namespace Tamrix {

/// The runner's waits for objects. They poll, first at once and then every 50 ms, and end early
/// when the run is interrupted.
class ObjectWaits : public virtual RunnerInterface {
public:
    explicit ObjectWaits(RunState& state) : m_state(state) {}

    SharedPtr<Object> waitForObjectByName(const QString& realName, bool ready,
                                          int timeout) override;
    SharedPtr<Object> waitForObject(SharedPtr<Object> object, bool ready, int timeout) override;
    SharedPtr<Object> waitForObjectExists(const QString& realName, bool ready,
                                          int timeout) override;
    SharedPtr<Object> waitForObjectItem(SharedPtr<Object> object, const QString& item, int row,
                                        int column, int timeout) override;
    /// Look, wait and call are one request, and the time-out is one: the application waits itself.
    Outcome<Outcome<SharedPtr<Object>>> callWithName(const QString& realName,
                                                     const QString& function,
                                                     const ObjectList& arguments,
                                                     int timeout) override;
    SharedPtr<Object> waitForProperties(SharedPtr<Object> object, const QString& realName,
                                        const ObjectName& properties, int timeout) override;

private:
    /// One look for an object. Fails when the application gave no answer in time or refused.
    using Look =
        std::function<Outcome<TargetAnswer>(Access& access, bool isLastLook, int lookTimeout)>;

    /// `what` names the object in messages. Gives what the last look saw.
    Outcome<TargetAnswer> waitUntilFound(const SharedPtr<Application>& application,
                                         const QString& what, Wire::Wanted wanted, int timeout,
                                         const Look& look);
    Failure interrupted(const QString& what) const;
    SharedPtr<Object> waitForName(const QString& name, Wire::Wanted wanted, int timeout);

    RunState& m_state;
};

}  // namespace Tamrix
