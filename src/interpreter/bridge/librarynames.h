#pragma once

#include <QStringList>

#include "base/export.h"

namespace Tamrix {

/// All names that the library gives a meaning in scripts: functions, those of applications among
/// them, namespaces and classes. Sorted.
TAMRIX_EXPORT QStringList libraryNames();

}  // namespace Tamrix
