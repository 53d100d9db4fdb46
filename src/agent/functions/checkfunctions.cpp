#include "agent/core/toolkit.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"

namespace Tamrix::Agent {

namespace {

/// Clicks after which a box with three states has been in each of them.
constexpr int mostClicks = 2;

/// Where to click: the mark of an item or a group, else the usual place.
std::optional<QPoint> offsetOf(const Element& element) {
    const QRect bounds = element.toolkit->globalBounds(element);
    const QRect area = element.toolkit->clickArea(element, ClickPurpose::Mark);
    return area == bounds ? std::nullopt : std::make_optional(area.center() - bounds.topLeft());
}

bool isIn(const Element& element, CheckState state) {
    const Outcome<CheckMark> mark = element.toolkit->checkMark(element);
    return mark && mark->state == state;
}

void addClickUnless(StepQueue* queue, const ElementRef& ref, const QPoint& point,
                    CheckState wanted) {
    queue->add([=] {
        const Element element = ref.get();
        if (!element.isNull() && !isIn(element, wanted))
            addClick(queue, ref, point);
    });
}

void setChecked(Call& call, CheckState wanted) {
    const Element element = call.takeObject();
    call.takeEnd();
    const Outcome<CheckMark> mark = element.toolkit->checkMark(element);
    if (!mark)
        throw CallError(mark.error());
    if (mark->state == wanted) {
        call.responder()->replyBody(Wire::Value());
        call.responder()->finish();
        return;
    }
    if (wanted == CheckState::Unchecked && mark->state == CheckState::Checked && mark->isExclusive)
        throw CallError(FailureKind::Refused,
                        QStringLiteral("%1 can't be unchecked: check another one instead")
                            .arg(Session::self()->describe(element)));
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
    setChecked(call, CheckState::Checked);
}

void uncheck(Call& call) {
    setChecked(call, CheckState::Unchecked);
}

}  // namespace Tamrix::Agent
