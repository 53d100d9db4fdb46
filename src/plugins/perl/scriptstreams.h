#pragma once

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Gives Perl the function through which the tied STDOUT and STDERR write to the interpreter's
/// output; from other threads they write to the process's own streams.
void defineStreams(pTHX);

}  // namespace Tamrix::PerlPlugin
