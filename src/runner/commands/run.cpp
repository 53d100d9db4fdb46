// "tamrixrunner run": the cases of a suite.

#include "runner/commands/caserun.h"
#include "runner/commands/farmoptions.h"

namespace Tamrix {

std::vector<Option<CaseRunSettings>> runOptions() {
    std::vector<Option<CaseRunSettings>> options = caseRunOptions();
    options.insert(options.end(),
                   {{"fail-fast", nullptr, "Ends the run behind the first test case that fails.",
                     nullptr, setTo(&CaseRunSettings::maxFailures, 1)},
                    {"update-vps", nullptr,
                     "Writes what the application shows to the files of verification points that "
                     "differ; each is told as a warning.",
                     nullptr, setTo(&CaseRunSettings::renewsVerificationPoints, true)},
                    {"debugger", nullptr,
                     "Stops each case at its first line and lets a program debug it over standard "
                     "input and output; the console report goes to standard error.",
                     nullptr, setTo(&CaseRunSettings::debugger, DebuggerDialogue::Machine)}});
    for (const Option<CaseRunSettings>& option : farmOptions())
        options.push_back(option);
    return options;
}

std::vector<std::pair<const char*, const char*>> exclusiveRunOptions() {
    auto exclusive = exclusiveCaseRunOptions();
    exclusive.insert(exclusive.end(), {{"fail-fast", "max-failures"},
                                       {"debugger", "jobs"},
                                       {"debugger", "retries"},
                                       {"debugger", "case-timeout"},
                                       {"interactive", "jobs"}});
    return exclusive;
}

Command runCommand() {
    return makeCommand<CaseRunSettings>(
        {{"run", "SUITE [CASE...]",
          "Runs the suite's test cases, or the named ones, in the suite's order.", 1,
          CommandSyntax::anyNumber, CommandTail::ScriptArguments},
         runOptions(),
         exclusiveRunOptions(),
         readCaseRunArguments,
         runCases});
}

}  // namespace Tamrix
