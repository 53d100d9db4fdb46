#pragma once

#include "agent/core/element.h"
#include "agent/core/session.h"
#include "wire/messages.h"

namespace Tamrix::Agent {

/// Calls a public slot or invokable method of the element's object and answers with its result. Of
/// several overloads the one with the best rank for the arguments is called. Fails with
/// NoSuchMethod, BadArgument or Unsupported (items have no methods).
///
/// A method that opens an event loop of its own, as a modal dialog does, is answered without
/// a result while it still runs: what it waits for comes with later requests.
void callMethod(const Element& element, const Wire::Invoke& call, const ResponderPtr& responder);

}  // namespace Tamrix::Agent
