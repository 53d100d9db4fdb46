#pragma once

#include "wire/messages.h"

namespace Tamrix::Agent {

/// What a person can see a part of, of all windows, with the names that find it. Plain objects
/// without part in the picture, with what is below them, and the toolkits' inner workings are left
/// out; what hangs in inner workings stands below the object around these.
Wire::ObjectListing makeListing();

}  // namespace Tamrix::Agent
