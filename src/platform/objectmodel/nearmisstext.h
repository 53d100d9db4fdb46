#pragma once

#include <QList>
#include <QString>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

/// Why nothing matches, for people: "No object matches {...}", then what differed on the objects
/// that matched nearly, one object a line.
TAMRIX_EXPORT QString missText(const ObjectName& name, const QList<NearMiss>& misses);

/// "text is 'a', wanted 'b'; it has no size, wanted '3'".
TAMRIX_EXPORT QString differenceText(const NearMiss& miss);

}  // namespace Tamrix
