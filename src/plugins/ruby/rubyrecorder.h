#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::RubyPlugin {

/// Writes scripts in Ruby.
class RubyRecorder : public NotatedRecorder {
public:
    /// Symbolic names are variables of this module; texts without one.
    explicit RubyRecorder(const QString& namesModule);
};

}  // namespace Tamrix::RubyPlugin
