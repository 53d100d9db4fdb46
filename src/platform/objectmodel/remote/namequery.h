#pragma once

#include "base/export.h"
#include "platform/objectmodel/objectname.h"
#include "wire/messages.h"

namespace Tamrix {

/// A name as the application looks for it. Fails when an occurrence is no number from 1, or a
/// wildcard or expression is malformed; the text names the property.
TAMRIX_EXPORT Outcome<Wire::Query> makeQuery(const ObjectName& name);

/// The name that makeQuery() makes this of; invalid for a query without criteria.
TAMRIX_EXPORT ObjectName nameOfQuery(const Wire::Query& query);

}  // namespace Tamrix
