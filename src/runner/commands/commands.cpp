#include "runner/commands/commands.h"

#include "runner/commands/commandline.h"

// The commands in the order of the help. Each NAME is the function NAMECommand() of a file.
#define TAMRIX_FOR_EACH_COMMAND(DO) \
    DO(run)                         \
    DO(debug)                       \
    DO(list)                        \
    DO(features)                    \
    DO(report)                      \
    DO(merge)                       \
    DO(trace)                       \
    DO(farm)                        \
    DO(inspect)                     \
    DO(names)                       \
    DO(record)                      \
    DO(compare)                     \
    DO(attachable)                  \
    DO(findImage)                   \
    DO(findText)                    \
    DO(cut)                         \
    DO(dap)                         \
    DO(mcp)                         \
    DO(drive)                       \
    DO(data)                        \
    DO(vp)

namespace Tamrix {

#define DECLARE_COMMAND(NAME) Command NAME##Command();
TAMRIX_FOR_EACH_COMMAND(DECLARE_COMMAND)
#undef DECLARE_COMMAND

std::vector<Command> allCommands() {
#define CALL_COMMAND(NAME) NAME##Command(),
    return {TAMRIX_FOR_EACH_COMMAND(CALL_COMMAND)};
#undef CALL_COMMAND
}

int execute(const QStringList& arguments) {
    const Outcome<Action> action = parseCommandLine(arguments, allCommands());
    return action ? (*action)() : failWith(action.error().text);
}

}  // namespace Tamrix
