#include "agent/input/activation.h"

#include <QGuiApplication>
#include <QPointer>
#include <QWindow>

#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"
#include "agent/input/windowsystem.h"

namespace Tamrix::Agent {

namespace {

/// How long the window system gets to pass the focus on.
constexpr int activationTimeout = 500;

QWindow* windowToActivate(const ElementRef& ref) {
    const Element element = ref.get();
    if (element.isNull())
        return nullptr;
    QWindow* const window = topLevelOf(element.toolkit->nativeWindow(element));
    if (window == nullptr || window->type() == Qt::Popup || window->type() == Qt::ToolTip ||
        (window->flags() & Qt::WindowDoesNotAcceptFocus) != 0 ||
        !element.toolkit->blockedBy(element).isNull())
        return nullptr;
    return window;
}

bool isActive(const ElementRef& ref) {
    const QWindow* const window = windowToActivate(ref);
    const QWindow* const focused = topLevelOf(QGuiApplication::focusWindow());
    // An open popup has the keys until it is closed: taking them from it closes it at once.
    return window == nullptr || window == focused ||
           (focused != nullptr && focused->type() == Qt::Popup);
}

void activate(const ElementRef& ref) {
    QWindow* const window = windowToActivate(ref);
    if (window == nullptr || isActive(ref))
        return;
    window->raise();
    window->requestActivate();
}

void activateAnyway(const ElementRef& ref) {
    if (!isActive(ref))
        WindowSystem::self().activate(windowToActivate(ref));
}

}  // namespace

void addActivation(StepQueue* queue, const ElementRef& element) {
    queue->call([element] { activate(element); });
    queue->waitFor([element] { return isActive(element); }, activationTimeout);
    queue->add([element] { activateAnyway(element); });
    queue->waitFor([element] { return isActive(element); }, activationTimeout);
}

void addFocus(StepQueue* queue, const ElementRef& element, Qt::FocusReason reason) {
    addActivation(queue, element);
    queue->call([ref = element, reason] {
        const Element target = ref.get();
        if (!target.isNull())
            target.toolkit->takeFocus(target, reason);
    });
}

}  // namespace Tamrix::Agent
