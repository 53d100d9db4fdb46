#pragma once

#include <optional>

#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

/// What a value was made as. A text may look like any of these and is none of them: a number that
/// was written in the script or read from a file is a text until something is calculated with it.
enum class ValueType { Text, Boolean, Integer, Double, List, Dictionary, Bytes };

/// A number that does not look as Tcl would write it, such as "007", stays a text.
ValueType typeOf(Tcl_Obj* value);

/// The text that is empty: what is given for nothing.
bool isEmptyText(Tcl_Obj* value);

/// Of an integer: whether Tcl keeps it as one of more than 64 bits.
bool isBig(Tcl_Obj* integer);

/// Whether a text is one that Tcl itself writes for an integer: what becomes of it is the same
/// whether it is taken for a text or for a number.
bool isPlainInteger(Tcl_Obj* value);

// What Tcl reads a value as; nothing when it can't. The value may be kept as such from then on.
std::optional<bool> truthOf(Tcl_Obj* value);
/// Unsigned integers of 64 bits are negative ones to Tcl.
std::optional<Tcl_WideInt> integerOf(Tcl_Obj* value);
std::optional<double> doubleOf(Tcl_Obj* value);

/// The words for a truth value, without numbers.
std::optional<bool> truthWord(Tcl_Obj* value);

}  // namespace Tamrix::TclPlugin
