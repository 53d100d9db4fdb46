#include "agent/functions/mousetarget.h"

#include <QElapsedTimer>
#include <QTimer>

#include "agent/core/guarded.h"
#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"
#include "base/boundedgeometry.h"

namespace Tamrix::Agent {

namespace {

constexpr int pollInterval = 50;

using Act = std::function<void(const ElementRef& element, const QPoint& point)>;

/// A point of the screen that is waited for.
struct PointWait {
    Call call;
    QPoint point;
    Qt::MouseButton button;
    Act act;
    QElapsedTimer clock;
};

/// What gets the events at the point: the innermost element that is known.
Element elementAt(const PointWait& wait) {
    const Element window = Session::self()->element(windowAt(wait.point));
    if (window.isNull())
        return window;
    const Element element = window.toolkit->elementAt(window, wait.point, wait.button);
    return element.isNull() ? window : element;
}

void failAtPoint(const PointWait& wait, const QString& problem) {
    wait.call.responder()->fail(
        FailureKind::NotReady,
        QStringLiteral("The point %1, %2 of the screen is not ready: %3")
            .arg(QString::number(wait.point.x()), QString::number(wait.point.y()), problem));
    wait.call.responder()->finish();
}

void lookAtPoint(const std::shared_ptr<PointWait>& wait) {
    const Element element = elementAt(*wait);
    const QString obstacle = element.isNull() ? QString() : obstacleOf(element);
    if (!element.isNull() && obstacle.isEmpty()) {
        wait->act(ElementRef(element), wait->point);
        return;
    }
    const ResponderPtr responder = wait->call.responder();
    if (wait->clock.elapsed() < wait->call.timeout() && responder->isWanted()) {
        QTimer::singleShot(pollInterval, Session::self(),
                           [wait, responder] { guarded(responder, [&] { lookAtPoint(wait); }); });
        return;
    }
    failAtPoint(*wait, element.isNull() ? QStringLiteral("no window of the application is there")
                                        : QStringLiteral("%1 is there, and %2")
                                              .arg(Session::self()->describe(element), obstacle));
}

}  // namespace

MouseTarget takeMouseTarget(Call* call) {
    if (call->hasRectangle())
        return call->takeRectangle();
    return call->takeObject();
}

void whenReady(const Call& call, const MouseTarget& target, const Aim& aim, const Act& act) {
    if (const Element* const element = std::get_if<Element>(&target)) {
        whenReady(call, *element, aim, act);
        return;
    }
    const QRect rectangle = std::get<QRect>(target);
    const QPoint point =
        aim.offset ? boundedPoint(rectangle.topLeft() + *aim.offset) : rectangle.center();
    const auto wait = std::make_shared<PointWait>(PointWait{call, point, aim.button, act, {}});
    wait->clock.start();
    lookAtPoint(wait);
}

}  // namespace Tamrix::Agent
