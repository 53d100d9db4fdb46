#pragma once

#include "interpreter/bridge/eventrecorder.h"

namespace Tamrix::PythonPlugin {

/// Writes scripts in Python. Needs no runtime of Python.
class PythonRecorder : public EventRecorder {
public:
    QString header() const override;
    QString lines(const ScriptAction& action) const override;
    QString footer() const override;
};

}  // namespace Tamrix::PythonPlugin
