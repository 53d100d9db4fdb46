#pragma once

#include "interpreter/language/recordingnotation.h"

namespace Tamrix::PerlPlugin {

/// Writes scripts in Perl.
class PerlRecorder : public NotatedRecorder {
public:
    /// Symbolic names are variables of this module; texts without one.
    explicit PerlRecorder(const QString& namesModule);
};

}  // namespace Tamrix::PerlPlugin
