// "tamrixrunner mcp": coding agents look at programs, use them and write tests for them.

#include "runner/commands/command.h"
#include "runner/commands/displayoption.h"
#include "runner/mcp/serving.h"

namespace Tamrix {

namespace {

Outcome<> readArguments(const CommandArguments&, Mcp::ServingOptions&) {
    return {};
}

int serve(const Mcp::ServingOptions& options) {
    const Outcome<int> code = Mcp::serveClients(options);
    return code ? *code : failWith(code.error().text);
}

}  // namespace

Command mcpCommand() {
    using Mcp::ServingOptions;
    return makeCommand<ServingOptions>(
        {{"mcp", "",
          "Lets a coding agent drive programs and write tests: a server of the Model Context "
          "Protocol on standard input and output.",
          0, 0},
         {displayOption(&ServingOptions::display, "auto"),
          {"listen", "SOCKET",
           "Serves clients that come and go at a local socket instead, as drive uses it.", nullptr,
           textTo(&ServingOptions::socket)}},
         {},
         readArguments,
         serve});
}

}  // namespace Tamrix
