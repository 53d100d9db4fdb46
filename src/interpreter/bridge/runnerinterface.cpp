#include "interpreter/bridge/runnerinterface.h"

#include "platform/objectmodel/inspector.h"

namespace Tamrix {

SharedPtr<Object> RunnerInterface::waitForProperties(SharedPtr<Object> /*object*/,
                                                     const QString& /*realName*/,
                                                     const ObjectName& /*properties*/,
                                                     int /*timeout*/) {
    Inspector::self()->setLastError(
        QStringLiteral("This runner does not wait for the properties of objects"));
    return {};
}

}  // namespace Tamrix
