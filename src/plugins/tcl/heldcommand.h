#pragma once

#include "plugins/tcl/heldvalues.h"

namespace Tamrix::TclPlugin {

/// What a value is, for people: the class of an object.
QString nameOfKind(const HeldValues::Held& held);

/// The command of a value: an object of an application, of a native class, a context.
int runHeldCommand(void* held, Tcl_Interp* interp, int count, Tcl_Obj* const* words);

}  // namespace Tamrix::TclPlugin
