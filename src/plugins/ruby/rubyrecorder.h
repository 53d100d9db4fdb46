#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::RubyPlugin {

/// Writes scripts in Ruby.
class RubyRecorder : public NotatedRecorder {
public:
    RubyRecorder();
};

}  // namespace Tamrix::RubyPlugin
