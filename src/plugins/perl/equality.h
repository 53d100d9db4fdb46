#pragma once

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Whether two values are equal as testers mean it, where Perl itself has several operators: texts
/// as `eq` does, and as `==` does where one of them is a number or truth and the other looks like a
/// number; undef equals undef alone; arrays and hashes by what they hold; objects of one class as
/// their operators say, and else, as code, by identity. What Perl dies with passes as
/// ScriptErrorSet, and so does the failure of values that are nested too deep.
bool areEqual(pTHX_ SV* left, SV* right);

}  // namespace Tamrix::PerlPlugin
