#pragma once

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Gives Perl the function through which the tied STDOUT and STDERR write to the interpreter's
/// output.
void defineStreams(pTHX);

}  // namespace Tamrix::PerlPlugin
