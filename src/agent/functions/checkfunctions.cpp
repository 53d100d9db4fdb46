#include <QAbstractButton>
#include <QButtonGroup>

#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/clickarea.h"
#include "agent/input/mousesteps.h"

namespace Tamrix::Agent {

namespace {

/// Clicks after which a box with three states has been in each of them.
constexpr int mostClicks = 2;

enum class State { NotCheckable, Unchecked, Partly, Checked };

State stateOf(int checkState) {
    switch (checkState) {
        case Qt::Unchecked:
            return State::Unchecked;
        case Qt::PartiallyChecked:
            return State::Partly;
        default:
            return State::Checked;
    }
}

bool boolProperty(const Element& element, const char* name, bool* isKnown) {
    return element.toolkit->property(element, QString::fromLatin1(name), isKnown).toBool();
}

State stateOf(const Element& element) {
    if (element.index.isValid()) {
        const QVariant state = element.index.data(Qt::CheckStateRole);
        const bool isCheckable = (element.index.flags() & Qt::ItemIsUserCheckable) != 0;
        return isCheckable && state.isValid() ? stateOf(state.toInt()) : State::NotCheckable;
    }
    // Boxes of widgets and of Qt Quick that may have three states.
    bool isKnown = false;
    if (!element.isItem()) {
        const QVariant state = element.object->property("checkState");
        if (state.isValid())
            return stateOf(state.toInt());
    }
    const bool isCheckable = boolProperty(element, "checkable", &isKnown);
    if (isKnown && !isCheckable)
        return State::NotCheckable;
    const bool isChecked = boolProperty(element, "checked", &isKnown);
    if (!isKnown)
        return State::NotCheckable;
    return isChecked ? State::Checked : State::Unchecked;
}

/// The one of a group of which always one is checked.
bool staysChecked(const Element& element) {
    if (element.isItem())
        return false;
    const auto* const button = qobject_cast<QAbstractButton*>(element.object);
    if (button != nullptr && button->group() != nullptr)
        return button->group()->exclusive();
    return element.object->property("autoExclusive").toBool();
}

/// Where to click: the mark of an item or a group, else the usual place.
std::optional<QPoint> offsetOf(const Element& element) {
    const QRect bounds = element.toolkit->globalBounds(element);
    const QRect area = clickArea(element, true);
    return area == bounds ? std::nullopt : std::make_optional(area.center() - bounds.topLeft());
}

void addClickUnless(StepQueue* queue, const ElementRef& ref, const QPoint& point, State wanted) {
    queue->add([=] {
        const Element element = ref.get();
        if (!element.isNull() && stateOf(element) != wanted)
            addClick(queue, ref, point);
    });
}

void setChecked(Call& call, State wanted) {
    const Element element = call.takeObject();
    call.takeEnd();
    const State state = stateOf(element);
    const QString name = Session::self()->describe(element);
    if (state == State::NotCheckable)
        throw CallError(FailureKind::Refused, QStringLiteral("%1 can't be checked").arg(name));
    if (state == wanted) {
        call.responder()->replyBody(Wire::Value());
        call.responder()->finish();
        return;
    }
    if (wanted == State::Unchecked && state == State::Checked && staysChecked(element))
        throw CallError(
            FailureKind::Refused,
            QStringLiteral("%1 can't be unchecked: check another one instead").arg(name));
    whenReady(call, element, Aim{offsetOf(element)},
              [=](const ElementRef& ref, const QPoint& point) {
                  auto* const queue = StepQueue::create();
                  addActivation(queue, ref);
                  addAnswer(queue, call);
                  for (int i = 0; i < mostClicks; ++i)
                      addClickUnless(queue, ref, point, wanted);
                  run(queue, call);
              });
}

}  // namespace

void check(Call& call) {
    setChecked(call, State::Checked);
}

void uncheck(Call& call) {
    setChecked(call, State::Unchecked);
}

}  // namespace Tamrix::Agent
