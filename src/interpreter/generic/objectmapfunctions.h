#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions of the namespace "objectMap", about the map of object names in use. They
// take their arguments from the context and report wrong ones, and what fails, as a GeneralError.

TAMRIX_EXPORT void objectMapAdd(ScriptContext* context);
TAMRIX_EXPORT void objectMapSymbolicName(ScriptContext* context);
TAMRIX_EXPORT void objectMapRealName(ScriptContext* context);
TAMRIX_EXPORT void objectMapSymbolicNames(ScriptContext* context);
TAMRIX_EXPORT void objectMapLoad(ScriptContext* context);

}  // namespace Tamrix
