#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/keynames.h"
#include "agent/input/mousesteps.h"
#include "wire/applicationfunctions.h"

namespace Tamrix::Agent {

namespace {

/// Qt::NoButton for what names none.
Qt::MouseButton buttonOf(const QString& name) {
    for (const Wire::MouseButtonName& entry : Wire::mouseButtonNames) {
        if (name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0)
            return static_cast<Qt::MouseButton>(entry.number);
    }
    return Qt::NoButton;
}

std::optional<QPoint> takeOffset(Call* call) {
    if (!call->hasNumber() || !call->hasNumber(1))
        return std::nullopt;
    return call->takePoint("x", "y");
}

/// Reads "[, button][, modifiers]" and the end.
MouseStyle takeStyle(Call* call) {
    MouseStyle style;
    QString modifiers;
    bool mayBeButton = false;
    if (call->hasNumber()) {
        const int number = call->takeNumber("button");
        style.button = static_cast<Qt::MouseButton>(number);
        const bool isOne = number > 0 && (number & (number - 1)) == 0;
        if (!isOne || (number & static_cast<int>(Qt::AllButtons)) == 0)
            throw CallError(
                FailureKind::BadArgument,
                QStringLiteral("%1 is no mouse button: 1 is left, 2 right, 4 middle").arg(number));
    } else if (call->hasText()) {
        const QString text = call->takeText("button");
        const Qt::MouseButton button = buttonOf(text);
        if (button != Qt::NoButton) {
            style.button = button;
        } else if (call->isAtEnd()) {
            modifiers = text;
            mayBeButton = !text.contains(QLatin1Char('+'));
        } else {
            throw CallError(FailureKind::BadArgument,
                            QStringLiteral("'%1' is no mouse button: \"left\", \"right\" or "
                                           "\"middle\"")
                                .arg(text));
        }
    }
    if (call->hasNumber())
        style.modifiers = Qt::KeyboardModifiers(call->takeNumber("modifiers"));
    else if (!call->isAtEnd())
        modifiers = call->takeText("modifiers");
    call->takeEnd();
    QString error;
    Qt::KeyboardModifiers named;
    if (!parseModifiers(modifiers, &named, &error)) {
        if (mayBeButton)
            error = QStringLiteral("'%1' is neither a mouse button nor a modifier").arg(modifiers);
        throw CallError(FailureKind::BadArgument, error);
    }
    style.modifiers |= named;
    return style;
}

void clickTimes(Call& call, int count) {
    const Element element = call.takeObject();
    const std::optional<QPoint> offset = takeOffset(&call);
    const MouseStyle style = takeStyle(&call);
    whenReady(call, element, Aim{offset, style.button},
              [=](const ElementRef& ref, const QPoint& point) {
                  auto* const queue = StepQueue::create();
                  addActivation(queue, ref);
                  addAnswer(queue, call);
                  addClick(queue, ref, point, style, count);
                  run(queue, call);
              });
}

}  // namespace

void click(Call& call) {
    clickTimes(call, 1);
}

void doubleClick(Call& call) {
    clickTimes(call, 2);
}

void drag(Call& call) {
    const Element element = call.takeObject();
    const QPoint from = call.takePoint("x", "y");
    const QPoint way = call.takePoint("dx", "dy");
    const MouseStyle style = takeStyle(&call);
    whenReady(call, element, Aim{from, style.button},
              [=](const ElementRef& ref, const QPoint& point) {
                  auto* const queue = StepQueue::create();
                  addActivation(queue, ref);
                  addAnswer(queue, call);
                  addDrag(queue, ref, point, point + way, style);
                  run(queue, call);
              });
}

void hover(Call& call) {
    const Element element = call.takeObject();
    const std::optional<QPoint> offset = takeOffset(&call);
    call.takeEnd();
    whenReady(call, element, Aim{offset}, [=](const ElementRef& ref, const QPoint& point) {
        auto* const queue = StepQueue::create();
        addAnswer(queue, call);
        addMove(queue, ref, point);
        run(queue, call);
    });
}

}  // namespace Tamrix::Agent
