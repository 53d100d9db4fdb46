#pragma once

#include <QString>

#include "base/outcome.h"
#include "interpreter/bridge/callarguments.h"
#include "interpreter/language/nativefunction.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

// Commands over functions of the library.

/// The words of a call: arguments at their places, then options, "-name value" each. `names` are
/// those of all parameters, the first ones of which, `requiredCount`, are never options. A word
/// that begins with "-" and is the name of no parameter is an argument; behind "--" all are. An
/// error is Tcl's for a bad option.
Outcome<CallArguments> argumentsOf(TclInterpreter& interpreter, const QStringList& names,
                                   int requiredCount, int count, Tcl_Obj* const* words);

/// A command over a function of the library; "::" in the name makes it part of an ensemble.
void defineNative(TclInterpreter& interpreter, const QString& name, const NativeFunction& function);

/// The same over a global function of the application.
void defineGlobalFunction(TclInterpreter& interpreter, const QString& name);

/// Calls a native function with words behind what `first` are: the object of a function of the
/// tables, or nothing. `object` is that of a method.
int callWithWords(TclInterpreter& interpreter, const NativeFunction& function,
                  const SharedPtr<NativeScriptObject>& object, const ScriptArgument::List& first,
                  int count, Tcl_Obj* const* words);

}  // namespace Tamrix::TclPlugin
