#include "interpreter/generic/screenplace.h"

#include "interpreter/bridge/runnerinterface.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

namespace {

int currentContextId(RunnerInterface* runner) {
    const SharedPtr<ApplicationContext> context = runner->applicationContext(QString());
    return context ? context->id : -1;
}

}  // namespace

SharedPtr<Object> placeObject(RunnerInterface* runner, const QRect& place) {
    while (true) {
        const int before = currentContextId(runner);
        const SharedPtr<Object> object = createRemoteScreenRectangle(place);
        if (before == currentContextId(runner))
            return object;
    }
}

}  // namespace Tamrix
