#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::PerlPlugin {

/// Writes scripts in Perl.
class PerlRecorder : public NotatedRecorder {
public:
    PerlRecorder();
};

}  // namespace Tamrix::PerlPlugin
