#pragma once

#include "interpreter/language/scriptfailure.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Makes the exception classes in the module Tamrix: Error (a StandardError), LookupError and
/// VerificationError (Errors), and FatalError (an Exception, which `rescue` alone lets pass).
void defineExceptions(VALUE module);

VALUE errorClass();
VALUE fatalErrorClass();

/// A new exception for what the library could not do.
VALUE exceptionOf(const ScriptFailure& failure);

}  // namespace Tamrix::RubyPlugin
