// "tamrixrunner attachable": keeps a program for runs to attach to.

#include "runner/applications/attachable.h"

#include "runner/commands/command.h"

namespace Tamrix {

namespace {

Outcome<> readArguments(const CommandArguments& arguments, AttachableOptions& options) {
    options.command = arguments.own;
    if (options.name.isEmpty())
        return wrongUsage(QStringLiteral("attachable needs --name NAME"));
    return {};
}

int keepProgram(const AttachableOptions& options) {
    QString error;
    const int exitCode = keepAttachable(options, &error);
    return error.isEmpty() ? exitCode : failWith(error);
}

}  // namespace

Command attachableCommand() {
    return makeCommand<AttachableOptions>(
        {{"attachable", "--name NAME PROGRAM [ARGUMENT...]",
          "Starts a program to which runs can attach by its name, and keeps it until it ends.", 1,
          CommandSyntax::anyNumber, CommandTail::Program},
         {{"name", "NAME", "The name for attachToApplication().", nullptr,
           textTo(&AttachableOptions::name)}},
         {},
         readArguments,
         keepProgram});
}

}  // namespace Tamrix
