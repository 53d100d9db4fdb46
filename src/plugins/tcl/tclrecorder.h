#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::TclPlugin {

/// Writes scripts in Tcl.
class TclRecorder : public NotatedRecorder {
public:
    /// Symbolic names are variables of this module; texts without one.
    explicit TclRecorder(const QString& namesModule);
};

}  // namespace Tamrix::TclPlugin
