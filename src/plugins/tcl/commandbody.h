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

/// `owner configure -name value ?-name value ...?`, words behind these: `write(name, words)` for
/// each two of them, which ends as a command does. The name is null for a word that is no option.
template <typename Write>
int writeOptions(TclInterpreter& interpreter, const QString& owner, int count,
                 Tcl_Obj* const* words, Write write) {
    if (count == 0 || count % 2 != 0)
        return wrongWords(interpreter, owner + " configure -option value ?-option value ...?");
    int code = TCL_OK;
    for (int index = 0; index < count && code == TCL_OK; index += 2)
        code = write(optionOf(words[index]), words + index);
    return code;
}

}  // namespace Tamrix::TclPlugin
