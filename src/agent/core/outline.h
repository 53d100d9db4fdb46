#pragma once

#include "wire/messages.h"

namespace Tamrix::Agent {

/// What is visible now, with what it takes to act on it. It makes a handle for each object.
Wire::ObjectOutline makeOutline();

}  // namespace Tamrix::Agent
