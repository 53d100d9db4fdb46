#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/scriptfailure.h"
#include "plugins/tcl/conversion.h"
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

/// `owner cget -property` and `owner configure -property value ...`, words behind `owner`; nothing
/// for other subcommands. `kind` is what a property is called. `read(name)` and `write(name,
/// value)`, for each property, end as commands do.
template <typename Read, typename Write>
std::optional<int> useOptions(TclInterpreter& interpreter, const QString& owner, const char* kind,
                              int count, Tcl_Obj* const* words, Read read, Write write) {
    const std::string_view subcommand = bytesOf(words[0]);
    if (subcommand == "cget") {
        const QString name = count == 2 ? optionOf(words[1]) : QString();
        return name.isEmpty() ? wrongWords(interpreter, owner + " cget -property") : read(name);
    }
    if (subcommand != "configure")
        return std::nullopt;
    if (count < 3 || count % 2 == 0)
        return wrongWords(interpreter, owner + " configure -option value ?-option value ...?");
    int code = TCL_OK;
    for (int index = 1; index < count && code == TCL_OK; index += 2) {
        const QString name = optionOf(words[index]);
        code = name.isEmpty() ? interpreter.fail(noSuch(kind, textOf(words[index]), owner, {}))
                              : write(name, words[index + 1]);
    }
    return code;
}

}  // namespace Tamrix::TclPlugin
