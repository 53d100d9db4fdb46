#pragma once

#include <QString>

namespace Tamrix::RubyPlugin {

/// What the running call of a verdict says in its script: the source text of its first argument, or
/// of the one called `parameter`, and below it, a line each, the values in it. To be asked in a
/// function that the script has called. Empty when there is nothing to tell. Throws ScriptErrorSet
/// for what ends the script.
QString explainCall(const char* parameter);

}  // namespace Tamrix::RubyPlugin
