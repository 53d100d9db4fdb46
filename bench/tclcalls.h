#pragma once

/// Prints what one call from Tcl to a native function costs, beside one of a bare command of Tcl's
/// C interface in the same interpreter.
void measureTclCalls();
