#pragma once

#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Makes the class of the streams that scripts print to.
void defineOutput(VALUE module);

/// Lets $stdout and $stderr write to the output of the interpreter whose scripts run.
void installOutput();

}  // namespace Tamrix::RubyPlugin
