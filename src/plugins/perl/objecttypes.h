#pragma once

#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

/// Gives Perl what the package tamrix::Object needs, whose methods are the properties and methods
/// of an application's object. Operators of it are in the prelude.
void defineObjectTypes(pTHX);

}  // namespace Tamrix::PerlPlugin
