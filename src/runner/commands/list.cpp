// "tamrixrunner list": the cases of a suite.

#include "runner/commands/command.h"
#include "runner/suites/suite.h"

namespace Tamrix {

namespace {

struct ListSettings {
    QString suite;
};

Outcome<> readArguments(const CommandArguments& arguments, ListSettings& settings) {
    settings.suite = arguments.own.constFirst();
    return {};
}

int listCases(const ListSettings& settings) {
    QString error;
    const Suite suite = loadSuite(settings.suite, &error);
    if (!error.isEmpty())
        return failWith(error);
    QString text;
    for (const SuiteCase& each : suite.cases)
        text += displayName(each) + QLatin1Char('\n');
    return show(text);
}

}  // namespace

Command listCommand() {
    return makeCommand<ListSettings>(
        {{"list", "SUITE",
          "Lists the suite's test cases in the order in which they run, one a line.", 1, 1},
         {},
         {},
         readArguments,
         listCases});
}

}  // namespace Tamrix
