#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::TclPlugin {

/// How scripts in Tcl are recorded.
extern const RecordingNotation recordingNotation;

}  // namespace Tamrix::TclPlugin
