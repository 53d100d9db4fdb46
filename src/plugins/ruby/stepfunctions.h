#pragma once

#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Makes what the functions in prelude/steps.rb call to register step definitions, hooks and
/// parameter types, and to keep values for steps.
void defineStepFunctions(VALUE native);

/// The Tamrix::StepContext, whose methods are the names in StepScopes.
VALUE stepContext();

/// Whether the exception, which may be nil, tells of a step that is still to be written.
bool isPendingStep(VALUE exception);

}  // namespace Tamrix::RubyPlugin
