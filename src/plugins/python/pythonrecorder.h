#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::PythonPlugin {

/// Writes scripts in Python.
class PythonRecorder : public NotatedRecorder {
public:
    /// Symbolic names are variables of this module; texts without one.
    explicit PythonRecorder(const QString& namesModule = QString());
};

}  // namespace Tamrix::PythonPlugin
