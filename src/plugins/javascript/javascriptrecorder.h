#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::JavaScriptPlugin {

/// Writes scripts in JavaScript.
class JavaScriptRecorder : public NotatedRecorder {
public:
    /// Symbolic names are variables of this module; texts without one.
    explicit JavaScriptRecorder(const QString& namesModule);
};

}  // namespace Tamrix::JavaScriptPlugin
