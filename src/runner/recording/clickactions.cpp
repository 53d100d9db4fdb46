#include "runner/recording/clickactions.h"

#include <algorithm>
#include <iterator>

#include "runner/recording/actionmerger.h"
#include "wire/applicationfunctions.h"
#include "wire/keynames.h"

namespace Tamrix {

namespace {

using Wire::ObservedRole;

/// Button and modifiers, as far as they are not the usual ones.
void addStyle(FunctionAction* action, const Wire::ObservedPress& press) {
    const auto* const button =
        std::find_if(std::begin(Wire::mouseButtonNames), std::end(Wire::mouseButtonNames),
                     [&press](const auto& each) { return each.number == press.button; });
    const bool isKnown = button != std::end(Wire::mouseButtonNames);
    const QString name = isKnown ? QString::fromLatin1(button->name) : QString();
    const QString modifiers =
        Wire::modifiersText(static_cast<Qt::KeyboardModifiers>(press.modifiers));
    if (isKnown && press.button != Qt::LeftButton)
        action->named.append({QStringLiteral("button"), name});
    if (!modifiers.isEmpty())
        action->named.append({QStringLiteral("modifiers"), modifiers});
}

/// A tall or wide object is hit where a person hit it.
bool isPlaceNeeded(ObservedRole role) {
    return role == ObservedRole::Place || role == ObservedRole::TextArea ||
           role == ObservedRole::Slider;
}

}  // namespace

FunctionAction clickAction(const Wire::ObservedPress& press, ClickCount count,
                           const ObservedName& nameOf) {
    const bool isPlain = press.button == Qt::LeftButton && press.modifiers == 0;
    if (isPlain && count == ClickCount::Single && !press.steps.isEmpty())
        return {QStringLiteral("selectItem"), nameOf(press.holder), {itemPathValue(press.steps)}};
    FunctionAction action;
    action.function =
        count == ClickCount::Double ? QStringLiteral("doubleClick") : QStringLiteral("click");
    action.object = nameOf(press.object);
    if (isPlaceNeeded(press.object.role))
        action.arguments = {qint64(press.place.x()), qint64(press.place.y())};
    addStyle(&action, press);
    return action;
}

FunctionAction dragAction(const Wire::ObservedPress& press, const QPoint& distance,
                          const ObservedName& nameOf) {
    FunctionAction action;
    action.function = QStringLiteral("drag");
    action.object = nameOf(press.object);
    action.arguments = {qint64(press.place.x()), qint64(press.place.y()), qint64(distance.x()),
                        qint64(distance.y())};
    addStyle(&action, press);
    return action;
}

}  // namespace Tamrix
