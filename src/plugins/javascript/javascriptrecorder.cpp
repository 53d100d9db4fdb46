#include "plugins/javascript/javascriptrecorder.h"

namespace Tamrix::JavaScriptPlugin {

constexpr RecordingNotation recordingNotation{
    .header = "function main() {\n",
    .footer = "}\n",
    .comment = "// ",
    .call = "%1(%2);",
    .named = nullptr,
    .leftOut = "undefined",
    .assignment = "waitForObject(%1).%2 = %3;",
    .expectation = "test.expect(%1, {%2});",
    .importingHeader = "import * as %1 from \"%1\";\n\nexport function main() {\n",
};

}  // namespace Tamrix::JavaScriptPlugin
