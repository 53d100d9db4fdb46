#pragma once

#include <QString>
#include <QStringList>

#include "interpreter/language/scriptfailure.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

// Words of commands with subcommands and options, and what Tcl says of wrong ones.

/// The name of an option, without its "-"; null for a word that has none.
QString optionOf(Tcl_Obj* word);

/// Fails as Tcl does for a number of words that no form of the command has.
int wrongWords(TclInterpreter& interpreter, const QString& usage);

ScriptFailure noMember(const QString& text);
/// That `owner` has nothing of the name; `kind` is "option" or "subcommand".
ScriptFailure noSuch(const char* kind, const QString& name, const QString& owner,
                     const QStringList& known);

}  // namespace Tamrix::TclPlugin
