#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"
#include "agent/functions/functiontable.h"
#include "agent/input/windowsystem.h"
#include "agent/readiness/readiness.h"

namespace Tamrix::Agent {

namespace {

QWindow* windowOf(const Element& element) {
    return topLevelOf(element.toolkit->nativeWindow(element));
}

/// Whether there is nothing more to wait for: the window can be closed, or is gone.
bool isDecided(const ElementRef& ref) {
    const Element element = ref.get();
    return element.isNull() || (windowOf(element) != nullptr && obstacleOf(element).isEmpty());
}

}  // namespace

void closeWindow(Call& call) {
    const Element element = call.takeObject();
    call.takeEnd();
    // The window, not the element, has to be reachable.
    const Element window = element.toolkit->window(element);
    const std::function<void()> close = element.toolkit->closerOf(element);
    const bool isInner = static_cast<bool>(close);
    if (window.isNull() && !isInner)
        throw CallError(
            FailureKind::Refused,
            QStringLiteral("%1 is in no window").arg(Session::self()->describe(element)));
    const ElementRef ref(isInner ? element : window);

    auto* const queue = StepQueue::create();
    const auto failLate = [ref, call] {
        const Element late = ref.get();
        const QString obstacle = late.isNull() ? QString() : obstacleOf(late);
        failNotReady(call, ref,
                     obstacle.isEmpty() ? QStringLiteral("it is not visible") : obstacle);
    };
    queue->waitFor([ref] { return isDecided(ref); }, call.timeout(), failLate);
    queue->add([queue, ref, failLate] {
        if (!ref.get().isNull())
            return;
        queue->abort();
        failLate();
    });
    addAnswer(queue, call);
    if (isInner)
        queue->call(close);
    else
        queue->add([ref] {
            const Element open = ref.get();
            if (!open.isNull())
                WindowSystem::self().close(windowOf(open));
        });
    run(queue, call);
}

}  // namespace Tamrix::Agent
