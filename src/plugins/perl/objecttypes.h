#pragma once

#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

/// Gives Perl the functions behind the packages of objects: tamrix::Object, whose methods are the
/// properties and methods of an application's object, tamrix::ApplicationContext, tamrix::DataSet
/// and tamrix::Record. Their operators are in the prelude.
void defineObjectTypes(pTHX);

}  // namespace Tamrix::PerlPlugin
