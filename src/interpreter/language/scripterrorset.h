#pragma once

#include "base/export.h"

namespace Tamrix {

/// Thrown where an exception of the script's language is pending and belongs to the script, not to
/// the native function in between. It unwinds the native function; the plug-in's function that
/// called it leaves the exception as it is, so that the script gets the original one.
struct TAMRIX_EXPORT ScriptErrorSet {};

}  // namespace Tamrix
