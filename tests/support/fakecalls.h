#pragma once

#include <QStringList>

#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix::Test {

/// What the parts of the fake runner share.
class FakeCalls : public virtual RunnerInterface {
public:
    FakeCalls() = default;
    // Copied, never moved: a virtual base would be moved several times.
    FakeCalls(const FakeCalls&) = default;
    FakeCalls& operator=(const FakeCalls&) = default;

    /// Calls that change something, with their arguments: "snooze 1.5".
    QStringList calls;
};

}  // namespace Tamrix::Test
