#include "interpreter/bridge/runnerinterface.h"

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmodel.h"

namespace Tamrix {

SharedPtr<Object> RunnerInterface::waitForProperties(SharedPtr<Object> /*object*/,
                                                     const QString& /*realName*/,
                                                     const ObjectName& /*properties*/,
                                                     int /*timeout*/) {
    Inspector::self()->keep(
        Failure{FailureKind::Refused,
                QStringLiteral("This runner does not wait for the properties of objects")});
    return {};
}

Outcome<Outcome<SharedPtr<Object>>> RunnerInterface::callWithName(const QString& realName,
                                                                  const QString& function,
                                                                  const ObjectList& arguments,
                                                                  int timeout) {
    const SharedPtr<Object> object = waitForObjectByName(realName, false, timeout);
    if (!object)
        return fail(Inspector::self()->lastFailure());
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        return Inspector::noApplication();
    ObjectList all{object};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return model->invokeGlobal(function, all);
}

}  // namespace Tamrix
