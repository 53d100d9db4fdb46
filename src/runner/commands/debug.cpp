// "tamrixrunner debug": one case of a suite, with a person at the debugger.

#include "runner/commands/caserun.h"

namespace Tamrix {

namespace {

Outcome<> readDebugArguments(const CommandArguments& arguments, CaseRunSettings& settings) {
    settings.debugger = DebuggerDialogue::Terminal;
    return readCaseRunArguments(arguments, settings);
}

}  // namespace

Command debugCommand() {
    return makeCommand<CaseRunSettings>(
        {{"debug", "SUITE CASE",
          "Runs a test case of the suite in the debugger, at the terminal, from its first line on.",
          2, 2, CommandTail::ScriptArguments},
         caseRunOptions(),
         exclusiveCaseRunOptions(),
         readDebugArguments,
         runCases});
}

}  // namespace Tamrix
