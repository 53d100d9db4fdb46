#pragma once

#include <QRect>
#include <variant>

#include "agent/functions/call.h"

namespace Tamrix::Agent {

/// What the mouse is used on: an element, or a rectangle of the screen, in which whatever is there
/// gets the events.
using MouseTarget = std::variant<Element, QRect>;

/// Throws CallError also when the object is gone.
MouseTarget takeMouseTarget(Call* call);

/// As whenReady() for an element. Of a rectangle, the element at the point is waited for.
void whenReady(const Call& call, const MouseTarget& target, const Aim& aim,
               const std::function<void(const ElementRef& element, const QPoint& point)>& act);

}  // namespace Tamrix::Agent
