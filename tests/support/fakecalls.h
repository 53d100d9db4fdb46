#pragma once

#include <QStringList>

#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix::Test {

/// What the parts of the fake runner share.
class FakeCalls : public virtual RunnerInterface {
public:
    /// Calls that change something, with their arguments: "snooze 1.5".
    QStringList calls;
};

}  // namespace Tamrix::Test
