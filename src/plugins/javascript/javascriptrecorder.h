#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::JavaScriptPlugin {

/// How scripts in JavaScript are recorded.
extern const RecordingNotation recordingNotation;

}  // namespace Tamrix::JavaScriptPlugin
