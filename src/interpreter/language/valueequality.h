#pragma once

#include <functional>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"

namespace Tamrix {

// For a language whose own equality does not look into its lists and maps.

using AreEqual =
    std::function<bool(const SharedPtr<ScriptArgument>&, const SharedPtr<ScriptArgument>&)>;

/// Whether both are lists of equal values in the same order.
TAMRIX_EXPORT bool areEqualLists(const ScriptArgument& left, const ScriptArgument& right,
                                 const AreEqual& areEqual);
/// Whether both are maps of the same keys with equal values, in whatever order.
TAMRIX_EXPORT bool areEqualMaps(const ScriptArgument& left, const ScriptArgument& right,
                                const AreEqual& areEqual);

}  // namespace Tamrix
