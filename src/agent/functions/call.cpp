#include "agent/functions/call.h"

#include <cmath>

#include "base/boundedgeometry.h"

namespace Tamrix::Agent {

namespace {

bool isNumber(const QVariant& value) {
    switch (value.userType()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
            return true;
        default:
            return false;
    }
}

/// The largest number that an argument can be, the highest of the modifiers.
constexpr double mostNumber = Qt::GroupSwitchModifier;

bool isText(const QVariant& value) {
    return value.userType() == QMetaType::QString;
}

}  // namespace

void Call::failArgument(const QString& text) const {
    throw CallError(FailureKind::BadArgument, text);
}

QVariant Call::take(const char* name) {
    if (isAtEnd())
        failArgument(QStringLiteral("the argument %1 is missing").arg(QLatin1String(name)));
    return m_arguments.at(m_next++);
}

bool Call::hasNumber(int ahead) const {
    return m_next + ahead < m_arguments.size() && isNumber(m_arguments.at(m_next + ahead));
}

bool Call::hasText() const {
    return !isAtEnd() && isText(m_arguments.at(m_next));
}

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

int Call::takeNumber(const char* name) {
    const QVariant value = take(name);
    if (!isNumber(value))
        failArgument(QStringLiteral("the argument %1 is no number").arg(QLatin1String(name)));
    // Also false for what is no number.
    const double real = value.toDouble();
    if (!(std::abs(real) <= mostNumber))
        failArgument(QStringLiteral("the argument %1 is out of range: %2")
                         .arg(QLatin1String(name), value.toString()));
    return qRound(real);
}

QPoint Call::takePoint(const char* x, const char* y) {
    const int left = takeNumber(x);
    return boundedPoint(QPointF(left, takeNumber(y)));
}

QString Call::takeText(const char* name) {
    const QVariant value = take(name);
    if (!isText(value) && !isNumber(value))
        failArgument(QStringLiteral("the argument %1 is no text").arg(QLatin1String(name)));
    return value.toString();
}

ItemPath Call::takePath(const char* name) {
    const bool isList = !isAtEnd() && m_arguments.at(m_next).userType() == QMetaType::QVariantList;
    if (!isList)
        return ItemPath::ofText(takeText(name));
    QStringList steps;
    const QVariantList values = take(name).toList();
    for (const QVariant& value : values) {
        if (!isText(value) && !isNumber(value))
            failArgument(
                QStringLiteral("a step of the argument %1 is no text").arg(QLatin1String(name)));
        steps.append(value.toString());
    }
    if (steps.isEmpty())
        failArgument(QStringLiteral("the argument %1 has no steps").arg(QLatin1String(name)));
    return ItemPath::ofSteps(steps);
}

void Call::takeEnd() const {
    if (!isAtEnd())
        failArgument(QStringLiteral("%1 arguments are too many, %2 were used")
                         .arg(QString::number(m_arguments.size()), QString::number(m_next)));
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
