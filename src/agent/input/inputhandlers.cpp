#include "agent/input/inputhandlers.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"
#include "agent/input/activation.h"
#include "agent/input/idlewatch.h"
#include "agent/input/keyboard.h"
#include "agent/input/pointer.h"
#include "agent/input/stepqueue.h"
#include "agent/input/windowsystem.h"
#include "agent/readiness/target.h"
#include "base/boundedgeometry.h"
#include "wire/mousearguments.h"

namespace Tamrix::Agent {

namespace {

/// The bit of a mouse event's mask that says that x and y are given.
constexpr int hasCoordinates = 8;

/// Whether input of this kind can be made; fails the request when not.
bool canBeMade(WindowSystem::Use use, const ResponderPtr& responder) {
    const QString obstacle = WindowSystem::self().obstacle(use);
    if (!obstacle.isEmpty())
        responder->fail(FailureKind::Refused, obstacle);
    return obstacle.isEmpty();
}

/// Answers, runs the steps, ends the request.
void answerAndRun(StepQueue* queue, const ResponderPtr& responder) {
    responder->reply();
    queue->start([responder] { responder->finish(); });
}

/// Where the event goes: a point of the screen, in an element of a window or in none.
struct MousePlace {
    Element element;
    QWindow* window = nullptr;
    QPoint position;
};

/// The place for a null element is on the screen.
Outcome<MousePlace> placeOf(const Wire::MouseEvent& request, const Element& element) {
    const QPoint given = boundedPoint(QPointF(request.x, request.y));
    const bool isGiven = (request.mask & hasCoordinates) != 0;
    if (element.isNull())
        return MousePlace{element, nullptr, isGiven ? given : Pointer::self().position()};
    QWindow* const window = element.toolkit->nativeWindow(element);
    const QRect bounds = element.toolkit->globalBounds(element);
    if (window == nullptr || bounds.isEmpty())
        return fail(FailureKind::NotReady, QStringLiteral("%1 is not ready: it is not visible")
                                               .arg(Session::self()->describe(element)));
    return MousePlace{element, window, isGiven ? bounds.topLeft() + given : bounds.center()};
}

void runMouseEvent(const Wire::MouseEvent& request, const Element& element,
                   const ResponderPtr& responder) {
    const Outcome<MousePlace> place = placeOf(request, element);
    if (!place) {
        responder->fail(place.error().kind, place.error().text);
        return;
    }
    const auto button = static_cast<Qt::MouseButton>(request.button);
    auto* const queue = StepQueue::create();
    if (!element.isNull() && request.buttonChange && request.press)
        addActivation(queue, ElementRef(element));
    // Modifiers that are not held down anyway are pressed around the event.
    const Qt::KeyboardModifiers extra =
        Qt::KeyboardModifiers(request.modifiers) & ~Keyboard::self().modifiers();
    const QVector<Key> keys = keysOfModifiers(extra);
    for (const Key& key : keys)
        queue->add([key] { Keyboard::self().press(key); });
    queue->add([target = QPointer<QWindow>(place->window), position = place->position] {
        Pointer::self().move(target, position);
    });
    if (request.buttonChange)
        queue->add([button, isPress = request.press] {
            if (isPress)
                Pointer::self().press(button);
            else
                Pointer::self().release(button);
        });
    for (auto it = keys.rbegin(); it != keys.rend(); ++it)
        queue->add([key = *it] { Keyboard::self().release(key); });
    answerAndRun(queue, responder);
}

void handleMouseEvent(const Wire::MouseEvent& request, const ResponderPtr& responder) {
    if (request.buttonChange && !Wire::isMouseButton(request.button)) {
        responder->fail(FailureKind::BadArgument, Wire::noMouseButtonText(request.button));
        return;
    }
    if (!canBeMade(WindowSystem::Use::Mouse, responder))
        return;
    if (request.target.isNothing()) {
        runMouseEvent(request, Element(), responder);
        return;
    }
    whenThere(request.target, responder, [request, responder](const Element& element) {
        runMouseEvent(request, element, responder);
    });
}

/// Without a window manager no window may have the focus: then the highest one that takes it does.
void addActivationOfAny(StepQueue* queue) {
    if (QGuiApplication::focusWindow() != nullptr)
        return;
    const QVector<QWindow*> windows = windowStack();
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        const Element element = Session::self()->element(*it);
        const bool takesFocus = (*it)->type() != Qt::ToolTip && (*it)->type() != Qt::Popup;
        if (!takesFocus || element.isNull() || !element.toolkit->blockedBy(element).isNull())
            continue;
        addActivation(queue, ElementRef(element));
        return;
    }
}

void handleKeyEvent(const Wire::KeyEvent& request, const ResponderPtr& responder) {
    QString error;
    const KeyCombination keys = parseKeys(request.key, &error);
    if (keys.isEmpty()) {
        responder->fail(FailureKind::BadArgument, error);
        return;
    }
    if (!canBeMade(WindowSystem::Use::Keys, responder))
        return;
    auto* const queue = StepQueue::create();
    addActivationOfAny(queue);
    if (request.press)
        for (const Key& key : keys)
            queue->add([key] { Keyboard::self().press(key); });
    else
        for (auto it = keys.rbegin(); it != keys.rend(); ++it)
            queue->add([key = *it] { Keyboard::self().release(key); });
    answerAndRun(queue, responder);
}

void handleQuit(const ResponderPtr& responder) {
    if (!canBeMade(WindowSystem::Use::Closing, responder)) {
        responder->finish();
        return;
    }
    auto* const queue = StepQueue::create();
    queue->add([] {
        const QVector<QWindow*> windows = windowStack();
        bool isAnyAsked = false;
        for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
            if ((*it)->property(internalWindowProperty).isValid())
                continue;
            isAnyAsked = true;
            WindowSystem::self().close(*it);
        }
        if (!isAnyAsked)
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [] { QCoreApplication::quit(); },
                Qt::QueuedConnection);
    });
    answerAndRun(queue, responder);
}

}  // namespace

void registerInputHandlers(Session* session) {
    using Wire::MessageType;
    session->setBodyHandler<Wire::MouseEvent>(MessageType::MouseEvent, handleMouseEvent);
    session->setBodyHandler<Wire::KeyEvent>(MessageType::KeyEvent, handleKeyEvent);
    session->setHandler(MessageType::Sync, [](const QByteArray&, const ResponderPtr& responder) {
        IdleWatch::start([responder] {
            responder->reply();
            responder->finish();
        });
    });
    session->setHandler(MessageType::Quit, [](const QByteArray&, const ResponderPtr& responder) {
        handleQuit(responder);
    });
}

}  // namespace Tamrix::Agent
