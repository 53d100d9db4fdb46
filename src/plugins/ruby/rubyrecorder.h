#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::RubyPlugin {

/// How scripts in Ruby are recorded.
extern const RecordingNotation recordingNotation;

}  // namespace Tamrix::RubyPlugin
