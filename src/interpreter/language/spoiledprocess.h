#pragma once

#include "base/export.h"

namespace Tamrix {

/// A language can't be used any more in this process: other test cases need another process.
TAMRIX_EXPORT void spoilProcess();
TAMRIX_EXPORT bool isProcessSpoiled();

}  // namespace Tamrix
