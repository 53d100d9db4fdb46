#pragma once

#include <QList>

#include "agent/core/session.h"
#include "wire/messages.h"

namespace Tamrix::Agent {

/// What the class "Global" describes: the functions that scripts call without an object.
QList<Wire::MethodInfo> globalFunctions();

/// Runs a global function: waits until the object is ready, answers, acts, finishes. Fails with
/// NoSuchMethod, BadArgument, NotReady or Unsupported.
void callGlobalFunction(const Wire::Invoke& call, const ResponderPtr& responder);

/// The events that sendEvent() and event handlers know, which "Global" describes too.
QList<Wire::EventInfo> globalEvents();

}  // namespace Tamrix::Agent
