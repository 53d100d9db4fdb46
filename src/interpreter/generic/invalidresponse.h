#pragma once

#include <QString>

#include "base/export.h"
#include "shared/ocr/typedexception.h"

namespace Tamrix {

class RunnerInterface;
class ScriptContext;

/// Stores the reply of a service that could not be used beside the results and attaches it. Without
/// a folder for results nothing is stored. Returns why it could not be stored, empty otherwise.
TAMRIX_EXPORT QString handleInvalidResponse(ScriptContext* context, RunnerInterface* runner,
                                            const InvalidResponse& exception);

}  // namespace Tamrix
