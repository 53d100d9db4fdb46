#include "plugins/ruby/rubyrecorder.h"

namespace Tamrix::RubyPlugin {

constexpr RecordingNotation recordingNotation{
    .header = "def main\n",
    .footer = "end\n",
    .indentation = "  ",
    .named = "%1: %2",
    .expectation = "test.expect(%1, { %2 })",
    .quoting = {.furtherEscaped = "#", .numbered = "\\u{%1}", .hasHalves = false},
};

}  // namespace Tamrix::RubyPlugin
