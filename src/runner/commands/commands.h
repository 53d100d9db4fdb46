#pragma once

#include <QStringList>
#include <vector>

#include "runner/commands/command.h"

namespace Tamrix {

/// The commands of the program, in the order of its help.
std::vector<Command> allCommands();

/// Does what the program's arguments ask for and returns the exit code. What goes wrong is told in
/// one line each on standard error. Needs a QCoreApplication and TAMRIX_PREFIX in the environment.
int execute(const QStringList& arguments);

}  // namespace Tamrix
