#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::TclPlugin {

/// Writes scripts in Tcl.
class TclRecorder : public NotatedRecorder {
public:
    TclRecorder();
};

}  // namespace Tamrix::TclPlugin
