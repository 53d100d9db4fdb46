#pragma once

#include <span>
#include <utility>
#include <vector>

#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

/// The elements of a list; none of what can't be read as one. They are valid as long as the value
/// is not changed.
std::span<Tcl_Obj* const> elementsOf(Tcl_Obj* list);
/// The entries of a dictionary in their order; the same holds for them.
std::vector<std::pair<Tcl_Obj*, Tcl_Obj*>> entriesOf(Tcl_Obj* dictionary);

/// The dictionary of properties by which an object is named, in which names of other objects are
/// dictionaries, too: what was made as one, and, where no text is meant, what has a type:
///
///     {type Button window {type Dialog}}
///
/// Null for what can't be read as a dictionary, and for an empty one.
TclRef nameDictionary(Tcl_Obj* value, int depth = 0);

}  // namespace Tamrix::TclPlugin
