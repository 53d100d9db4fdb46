#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::JavaScriptPlugin {

/// Writes scripts in JavaScript.
class JavaScriptRecorder : public NotatedRecorder {
public:
    JavaScriptRecorder();
};

}  // namespace Tamrix::JavaScriptPlugin
