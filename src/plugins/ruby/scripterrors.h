#pragma once

#include "interpreter/bridge/callarguments.h"
#include "interpreter/language/languageinterpreter.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// "NAME: text", with the exceptions that led to it below.
QString exceptionText(VALUE exception);

/// Takes what is pending and tells a person of it.
ScriptError takeScriptError();

/// Named arguments as Ruby hands them on: a Hash with Symbols.
VALUE namedAsHash(const NamedArguments& named);

/// Calls a Proc, Method or other object with a method `call`. A block that is no lambda takes as
/// many arguments as it wants. Throws ScriptErrorSet.
VALUE callCallable(VALUE function, const CallArguments& arguments);

}  // namespace Tamrix::RubyPlugin
