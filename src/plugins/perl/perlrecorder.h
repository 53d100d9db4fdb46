#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::PerlPlugin {

/// How scripts in Perl are recorded.
extern const RecordingNotation recordingNotation;

}  // namespace Tamrix::PerlPlugin
