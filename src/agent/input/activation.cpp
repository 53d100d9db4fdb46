#include "agent/input/activation.h"

#include <qpa/qwindowsysteminterface.h>
#include <QGuiApplication>
#include <QPointer>
#include <QWidget>
#include <QWindow>

#include "agent/input/windowstack.h"

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
        QWindowSystemInterface::handleWindowActivated<QWindowSystemInterface::AsynchronousDelivery>(
            windowToActivate(ref));
}

void giveFocus(const ElementRef& ref, Qt::FocusReason reason) {
    const Element element = ref.get();
    if (element.isNull())
        return;
    if (auto* const widget = qobject_cast<QWidget*>(element.object)) {
        QWidget* const taker = focusTaker(widget);
        const QWidget* const focused = widget->window()->focusWidget();
        const bool hasFocus = focused != nullptr && (focused == taker || widget == focused ||
                                                     widget->isAncestorOf(focused));
        if (!hasFocus && taker->focusPolicy() != Qt::NoFocus)
            taker->setFocus(reason);
    } else if (element.object->property("activeFocus").isValid() &&
               !element.object->property("activeFocus").toBool()) {
        QMetaObject::invokeMethod(element.object, "forceActiveFocus",
                                  Q_ARG(Qt::FocusReason, reason));
    }
}

}  // namespace

QWidget* focusTaker(QWidget* widget) {
    while (widget->focusProxy() != nullptr)
        widget = widget->focusProxy();
    return widget;
}

void addActivation(StepQueue* queue, const ElementRef& element) {
    queue->call([element] { activate(element); });
    queue->waitFor([element] { return isActive(element); }, activationTimeout);
    queue->add([element] { activateAnyway(element); });
    queue->waitFor([element] { return isActive(element); }, activationTimeout);
}

void addFocus(StepQueue* queue, const ElementRef& element, Qt::FocusReason reason) {
    addActivation(queue, element);
    queue->call([element, reason] { giveFocus(element, reason); });
}

}  // namespace Tamrix::Agent
