#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::PythonPlugin {

/// How scripts in Python are recorded.
extern const RecordingNotation recordingNotation;

}  // namespace Tamrix::PythonPlugin
