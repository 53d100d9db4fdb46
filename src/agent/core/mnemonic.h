#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix::Agent {

/// A label as it is shown: "&Save" is "Save", "A && B" is "A & B".
TAMRIX_EXPORT QString withoutMnemonic(const QString& label);

}  // namespace Tamrix::Agent
