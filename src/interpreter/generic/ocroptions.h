#pragma once

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"
#include "shared/ocr/options.h"

namespace Tamrix::OCR {

/// The options of one recognition, as a script gives them. What a script says of an engine replaces
/// that engine's record as a whole. Throws std::runtime_error for what is wrong; unknown keys are
/// told only when the known ones are right.
TAMRIX_EXPORT Options getOCROptions(const ScriptArgument::Map& map);

}  // namespace Tamrix::OCR
