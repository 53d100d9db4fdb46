#pragma once

#include "agent/core/elementref.h"
#include "agent/input/stepqueue.h"

namespace Tamrix::Agent {

/// Adds steps that make the element's window the active one, as a click into it does where a window
/// manager runs: raises it and waits until it has the focus. Nothing for popups, blocked windows
/// and those that take no focus.
void addActivation(StepQueue* queue, const ElementRef& element);

/// Adds steps that activate the element's window and give the element the keyboard's focus, if it
/// takes any and does not have it yet.
void addFocus(StepQueue* queue, const ElementRef& element, Qt::FocusReason reason);

}  // namespace Tamrix::Agent
