#pragma once

#include "base/export.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

/// Whether it is a field that hides what is entered; null is none. Asks the application.
TAMRIX_EXPORT bool isForPasswords(const SharedPtr<Object>& object);

}  // namespace Tamrix
