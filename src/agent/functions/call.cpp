#include "agent/functions/call.h"

#include "base/boundedgeometry.h"

namespace Tamrix::Agent {

Element Call::takeObject() {
    const QVariant value = take("object");
    if (value.userType() != qMetaTypeId<Wire::ObjectInfo>())
        failArgument(QStringLiteral("the argument object is no object"));
    const auto info = value.value<Wire::ObjectInfo>();
    const Outcome<Element> element = Session::self()->find(info.handle);
    if (!element)
        throw CallError(element.error());
    return *element;
}

bool Call::hasRectangle() const {
    return next().userType() == QMetaType::QRect;
}

QRect Call::takeRectangle() {
    return boundedRect(take("object").toRect());
}

ItemPath Call::takePath(const char* name) {
    if (next().userType() != QMetaType::QVariantList)
        return ItemPath::ofText(takeText(name));
    QStringList steps;
    const QVariantList values = take(name).toList();
    for (const QVariant& value : values) {
        if (!isTextual(value))
            failArgument(
                QStringLiteral("a step of the argument %1 is no text").arg(QLatin1String(name)));
        steps.append(value.toString());
    }
    if (steps.isEmpty())
        failArgument(QStringLiteral("the argument %1 has no steps").arg(QLatin1String(name)));
    return ItemPath::ofSteps(steps);
}

void failNotReady(const Call& call, const ElementRef& element, const QString& obstacle) {
    const Element found = Session::self()->findOrFail(element.handle(), call.responder());
    if (!found.isNull())
        call.responder()->fail(
            FailureKind::NotReady,
            QStringLiteral("%1 is not ready: %2").arg(Session::self()->describe(found), obstacle));
}

void whenReady(const Call& call, const Element& element, const Aim& aim,
               const std::function<void(const ElementRef& element, const QPoint& point)>& act) {
    waitUntilReady(element, aim, call.timeout(),
                   [call, ref = ElementRef(element), act](const Readiness& readiness) {
                       if (readiness.isReady) {
                           act(ref, readiness.point);
                           return;
                       }
                       if (const Outcome<Element> same = Session::self()->find(ref.handle());
                           !same) {
                           call.responder()->lose(same.error().text);
                           return;
                       }
                       failNotReady(call, ref, readiness.obstacle);
                       call.responder()->finish();
                   });
}

void addAnswer(StepQueue* queue, const Call& call) {
    queue->add([responder = call.responder()] { responder->replyBody(Wire::Value()); });
}

void run(StepQueue* queue, const Call& call) {
    queue->start([responder = call.responder()] { responder->finish(); });
}

}  // namespace Tamrix::Agent
