#pragma once

namespace Tamrix::RubyPlugin {

/// What of the plug-in is written in Ruby, in the order in which it is run.
extern const char* const prelude[2];

}  // namespace Tamrix::RubyPlugin
