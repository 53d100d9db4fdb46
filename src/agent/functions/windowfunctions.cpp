#include <qpa/qwindowsysteminterface.h>
#include <QMdiSubWindow>

#include "agent/core/readiness.h"
#include "agent/functions/functiontable.h"
#include "agent/input/windowstack.h"

namespace Tamrix::Agent {

namespace {

QWindow* windowOf(const Element& element) {
    return topLevelOf(element.toolkit->nativeWindow(element));
}

bool isClosable(const ElementRef& ref) {
    const Element element = ref.get();
    return !element.isNull() && windowOf(element) != nullptr && obstacleOf(element).isEmpty();
}

}  // namespace

void closeWindow(Call& call) {
    const Element element = call.takeObject();
    call.takeEnd();
    // The window, not the element, has to be reachable.
    const Element window = element.toolkit->window(element);
    const bool isInner = qobject_cast<QMdiSubWindow*>(element.object) != nullptr;
    if (window.isNull() && !isInner)
        throw CallError(
            FailureKind::Refused,
            QStringLiteral("%1 is in no window").arg(Session::self()->describe(element)));
    const ElementRef ref(isInner ? element : window);

    auto* const queue = StepQueue::create();
    queue->waitFor(
        [ref] { return isClosable(ref); }, call.timeout(),
        [ref, call] {
            const Element late = ref.get();
            const QString obstacle = late.isNull() ? QString() : obstacleOf(late);
            call.responder()->fail(
                late.isNull() ? FailureKind::Gone : FailureKind::NotReady,
                notReadyText(ref,
                             obstacle.isEmpty() ? QStringLiteral("it is not visible") : obstacle));
        });
    addAnswer(queue, call);
    if (isInner)
        queue->call([ref] {
            if (auto* const inner = qobject_cast<QMdiSubWindow*>(ref.get().object))
                inner->close();
        });
    else
        queue->add([ref] {
            const Element open = ref.get();
            if (!open.isNull())
                QWindowSystemInterface::handleCloseEvent<
                    QWindowSystemInterface::AsynchronousDelivery>(windowOf(open));
        });
    run(queue, call);
}

}  // namespace Tamrix::Agent
