#pragma once

#include <QString>

#include "platform/objectmodel/objectname.h"
#include "wire/messages.h"

namespace Tamrix {

/// A name as the application looks for it. Fails when an occurrence is no number from 1, or a
/// wildcard or expression is malformed; the text names the property.
Outcome<Wire::Query> makeQuery(const ObjectName& name);

/// Why nothing matches, for people: "No object matches {...}", then what differed on the objects
/// that matched nearly, one object a line.
QString missText(const ObjectName& name, const QList<NearMiss>& misses);

/// "text is 'a', wanted 'b'; it has no size, wanted '3'".
QString differenceText(const NearMiss& miss);

}  // namespace Tamrix
