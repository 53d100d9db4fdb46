#include "plugins/perl/perlrecorder.h"

namespace Tamrix::PerlPlugin {

constexpr RecordingNotation recordingNotation{
    .header = "use strict;\nuse warnings;\n\nsub main {\n",
    .footer = "}\n",
    .truths = {"!!0", "!!1"},
    .call = "%1(%2);",
    .named = "-%1 => %2",
    .password = "testSettings->getPassword(%1)",
    .assignment = "waitForObject(%1)->%2(%3);",
    .expectation = "test::expect(%1, {%2});",
    .property = "%1 => %2",
    .quotedProperty = "%1 => %2",
    .quoting = {.furtherEscaped = "$@", .numbered = "\\x{%1}"},
    .importingHeader = "use strict;\nuse warnings;\nrequire '%1.pl';\n\nsub main {\n",
    .variable = "$%1::%2",
};

}  // namespace Tamrix::PerlPlugin
