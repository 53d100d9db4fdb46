#include "plugins/ruby/rubyrecorder.h"

#include "plugins/ruby/objectnames.h"

namespace Tamrix::RubyPlugin {

constexpr RecordingNotation recordingNotation{
    .header = "def main\n",
    .footer = "end\n",
    .indentation = "  ",
    .named = "%1: %2",
    .expectation = "test.expect(%1, { %2 })",
    .quoting = {.furtherEscaped = "#", .numbered = "\\u{%1}", .hasHalves = false},
    .importingHeader = "require '%1'\n\ndef main\n",
    .variable = "%1::%2",
    .moduleOfFile = moduleOfFile,
};

}  // namespace Tamrix::RubyPlugin
