#pragma once

#include <QPoint>

#include "agent/core/elementref.h"
#include "agent/input/stepqueue.h"
#include "wire/mousearguments.h"

namespace Tamrix::Agent {

using Wire::MouseStyle;

// Each adds the steps of a mouse action at a point of the screen, in the native window of the
// element as it is when the steps run; nothing happens when the element is gone by then.

void addMove(StepQueue* queue, const ElementRef& element, const QPoint& point);
/// `count` 2 makes a double click.
void addClick(StepQueue* queue, const ElementRef& element, const QPoint& point,
              const MouseStyle& style = MouseStyle(), int count = 1);
void addDrag(StepQueue* queue, const ElementRef& element, const QPoint& from, const QPoint& to,
             const MouseStyle& style = MouseStyle());

}  // namespace Tamrix::Agent
