#pragma once

#include "base/export.h"

namespace Tamrix {

/// Ctrl-C is the script's, unless the process ignores it or somebody handles it: `handler` is
/// called then, in a signal handler.
TAMRIX_EXPORT void handleInterrupts(void (*handler)(int));

}  // namespace Tamrix
