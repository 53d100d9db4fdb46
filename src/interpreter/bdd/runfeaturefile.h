#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

/// The script function runFeatureFile(fileName): runs a feature file with the step definitions of
/// the script's language. Errors in steps and hooks are results; only a file that can't be run as a
/// whole is an error of the script.
TAMRIX_EXPORT void runFeatureFile(ScriptContext* context);

}  // namespace Tamrix
