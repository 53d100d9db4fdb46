#pragma once

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Runs a file of the plug-in's own Perl code, "library" for prelude/library.pl, in a runtime that
/// is entered. Its lines are none of scripts: it has no path. Throws std::runtime_error when it
/// does not come to its end.
void runPrelude(pTHX_ const char* name);

}  // namespace Tamrix::PerlPlugin
