#pragma once

#include <functional>

#include "agent/core/session.h"

namespace Tamrix::Agent {

/// Finds what a request is about, waits until it is as wanted, and hands it to `act`: at once, or
/// later from the event loop. Each look is a new one, so that the object may come, and another one
/// may take its place. Answers the request itself when that does not happen in the target's time:
/// with what was missed, or with a failure when the target is malformed or its object is gone. The
/// target is not nothing.
void whenThere(const Wire::Target& target, const ResponderPtr& responder,
               const std::function<void(const Element& element)>& act);

}  // namespace Tamrix::Agent
