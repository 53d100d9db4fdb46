#pragma once

#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Makes what the streams that scripts print to need, in the modules Tamrix and Tamrix::Native.
void defineOutput(VALUE module, VALUE native);

/// Lets $stdout and $stderr write to the output of the interpreter whose scripts run.
void installOutput();

}  // namespace Tamrix::RubyPlugin
