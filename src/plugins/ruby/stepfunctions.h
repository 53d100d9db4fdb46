#pragma once

#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Makes the functions with which scripts register step definitions, hooks and parameter types, and
/// what steps work with: Tamrix::StepContext and Tamrix::PendingStepError.
void defineStepFunctions(VALUE module);

/// What steps and hooks keep things in for each other: its methods are the names in StepScopes.
VALUE stepContext();

/// Whether the exception, which may be nil, tells of a step that is still to be written.
bool isPendingStep(VALUE exception);

}  // namespace Tamrix::RubyPlugin
