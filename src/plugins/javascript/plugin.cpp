#include "interpreter/language/languageplugin.h"

#include "interpreter/language/recordingnotation.h"
#include "plugins/javascript/javascriptinterpreter.h"

using namespace Tamrix;

namespace {

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

}  // namespace

Interpreter* createInterpreter(RunnerInterface* runner) {
    return createOrTell<JavaScriptPlugin::JavaScriptInterpreter>("JavaScript", runner);
}

EventRecorder* createEventRecorder(bool, bool, bool, const QString& namesModule) {
    return new NotatedRecorder(recordingNotation, namesModule);
}
