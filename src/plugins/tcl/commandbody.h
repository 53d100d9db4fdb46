#pragma once

#include <QString>
#include <QStringList>

#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/scriptfailure.h"
#include "plugins/tcl/tclinterpreter.h"

namespace Tamrix::TclPlugin {

// What the bodies of commands are made with: words of commands with subcommands and options, what
// Tcl says of wrong ones, and how a command ends.

/// Runs the body of a command: what unwinds native code in it becomes the end of the command.
template <typename Body>
int runCommand(TclInterpreter& interpreter, Body body) {
    try {
        return body();
    } catch (const ScriptErrorSet&) {
        return interpreter.failAsPending();
    }
}

/// The name of an option, without its "-"; null for a word that has none.
QString optionOf(Tcl_Obj* word);

/// Fails as Tcl does for a number of words that no form of the command has.
int wrongWords(TclInterpreter& interpreter, const QString& usage);

ScriptFailure noMember(const QString& text);
/// That `owner` has nothing of the name; `kind` is "option" or "subcommand".
ScriptFailure noSuch(const char* kind, const QString& name, const QString& owner,
                     const QStringList& known);

}  // namespace Tamrix::TclPlugin
