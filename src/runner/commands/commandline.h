#pragma once

#include <QStringList>
#include <vector>

#include "base/outcome.h"
#include "runner/commands/command.h"

namespace Tamrix {

/// Reads the program's arguments, the first of which is its own name: what is to be done. Wrong
/// usage is a failure, told in one line that says where to read more. Needs a QCoreApplication. The
/// action does not refer to the commands.
Outcome<Action> parseCommandLine(const QStringList& arguments,
                                 const std::vector<Command>& commands);

}  // namespace Tamrix
