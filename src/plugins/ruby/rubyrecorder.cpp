#include "plugins/ruby/rubyrecorder.h"

namespace Tamrix::RubyPlugin {

namespace {

constexpr RecordingNotation notation{
    .header = "def main\n",
    .footer = "end\n",
    .indentation = "  ",
    .named = "%1: %2",
    .expectation = "test.expect(%1, { %2 })",
    .quoting = {.furtherEscaped = "#", .numbered = "\\u{%1}", .hasHalves = false},
};

}  // namespace

RubyRecorder::RubyRecorder() : NotatedRecorder(notation) {}

}  // namespace Tamrix::RubyPlugin
