#pragma once

#include "platform/objectmodel/objectclass.h"
#include "wire/messages.h"

namespace Tamrix {

/// The class of this description: the same for equal descriptions, whichever connection they came
/// from. Lives for the process, since scripts keep classes longer than connections.
const Class* internClass(const Wire::ClassInfo& info);

}  // namespace Tamrix
