#pragma once

#include "interpreter/language/scriptoutput.h"

namespace Tamrix::PythonPlugin {

/// Replaces sys.stdout and sys.stderr by objects that write to `output`, null for the process's own
/// streams. `output` stays as long as it is installed. False with the error indicator set on
/// failure.
bool installStreams(ScriptOutput* output);

}  // namespace Tamrix::PythonPlugin
