#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

/// The script function findFile(type, name): the path of a suite's script or test data file.
TAMRIX_EXPORT bool findFile(ScriptContext* context);

/// The script function source(fileName): runs another script in the calling context.
TAMRIX_EXPORT void sourceFile(ScriptContext* context);

}  // namespace Tamrix
