#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <string_view>
#include <vector>

#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

// What Tcl 8.6 tells only in its internal headers: where the commands are that run, and how a list
// came to be. No other source includes these headers.

/// A procedure, a lambda, or the top level of the script, and where it stands.
struct TclFrame {
    /// The level of its variables: `uplevel #level` runs code with them.
    int level = 0;
    QString file;
    int line = -1;
    /// Tells the command from others on the line; null when unknown. Only compared.
    const void* command = nullptr;
};

/// The frames that run commands of files, the innermost first. A level of variables is one frame:
/// of the code that runs with them, such as the bodies of loops, the innermost command counts that
/// is in a file. Code that was put together as a text stands where it is evaluated.
std::vector<TclFrame> runningFrames(Tcl_Interp* interp);
/// Where the innermost procedure of a file was defined that runs, for code of which no command is
/// known, as for what a trace of a variable runs; a line of -1 without one.
TclFrame runningProcedure(Tcl_Interp* interp);
/// Where the innermost of these is, without what takes time to tell.
struct TclPlace {
    int level = 0;
    Tcl_Obj* path = nullptr;
    int line = -1;
};
std::optional<TclPlace> innermostPlace(Tcl_Interp* interp);
/// The frames while an error is being noted that a command has raised, whose source begins so.
std::vector<TclFrame> framesAtError(Tcl_Interp* interp, std::string_view command);

/// Whether errors of handlers of Tcl's own events wait to be told, which Tcl does when it has
/// nothing else to do.
bool hasLateErrors(Tcl_Interp* interp);

/// Commands run again, although it was told to leave all that ran by then.
void forgetCancellation(Tcl_Interp* interp);

/// How many commands run in each other.
int commandDepth(Tcl_Interp* interp);
/// The source of the commands that run below the outermost `outer` ones, the innermost first; one
/// whose source is not known is empty.
std::vector<QByteArray> runningCommands(Tcl_Interp* interp, int outer);

/// Runs the text of a file at the top level, so that its commands know file and line.
int evaluateFile(Tcl_Interp* interp, const QString& text, const QString& path);

/// Where a procedure was defined; a line of -1 when that is in no file.
TclFrame definitionOf(Tcl_Interp* interp, const char* procedure);

bool isProcedure(Tcl_Interp* interp, const char* name);

/// Whether a value with the type of a list was made as one, and is no text that was looked at as
/// one.
bool isMadeAsList(Tcl_Obj* list);

}  // namespace Tamrix::TclPlugin
