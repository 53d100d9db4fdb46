#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"
#include "wire/mousearguments.h"

namespace Tamrix::Agent {

namespace {

void clickTimes(Call& call, int count) {
    const Element element = call.takeObject();
    const std::optional<QPoint> offset = Wire::takeOffset(&call);
    const MouseStyle style = Wire::takeMouseStyle(&call);
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
    const MouseStyle style = Wire::takeMouseStyle(&call);
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
    const std::optional<QPoint> offset = Wire::takeOffset(&call);
    call.takeEnd();
    whenReady(call, element, Aim{offset}, [=](const ElementRef& ref, const QPoint& point) {
        auto* const queue = StepQueue::create();
        addAnswer(queue, call);
        addMove(queue, ref, point);
        run(queue, call);
    });
}

}  // namespace Tamrix::Agent
