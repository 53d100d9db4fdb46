#pragma once

#include <QString>

#include "base/export.h"
#include "platform/verification/verificationpoint.h"

namespace Tamrix {

/// A verification point for a person to read: what is expected of which object, an expectation a
/// line.
TAMRIX_EXPORT QString verificationPointText(const VerificationPoint& point);

}  // namespace Tamrix
