#pragma once

#include <QtGlobal>

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions that find objects of the application and ask them about themselves. They
// take their arguments from the context, check them by themselves, and report with
// ScriptContext::setError(): a look-up that times out in a waiting function is a LookupError,
// everything else a GeneralError. Functions that return a bool return whether no error was set.

// Look-up: objectlookup.cpp.
TAMRIX_EXPORT void waitForObject(ScriptContext* context);
TAMRIX_EXPORT void waitForObjectExists(ScriptContext* context);
TAMRIX_EXPORT void waitForObjectItem(ScriptContext* context);
/// Looks once, without waiting.
TAMRIX_EXPORT void findObject(ScriptContext* context);
TAMRIX_EXPORT void findAllObjects(ScriptContext* context);

// The namespace "object": objectfunctions.cpp and, for what concerns types, objecttypes.cpp.
TAMRIX_EXPORT void objectExists(ScriptContext* context);
TAMRIX_EXPORT void objectChildren(ScriptContext* context);
TAMRIX_EXPORT void objectParent(ScriptContext* context);
TAMRIX_EXPORT void objectProperties(ScriptContext* context);
TAMRIX_EXPORT void objectTopLevelObjects(ScriptContext* context);
TAMRIX_EXPORT void objectGlobalBounds(ScriptContext* context);
TAMRIX_EXPORT void objectObjectName(ScriptContext* context);
TAMRIX_EXPORT void objectIsPointer(ScriptContext* context);
TAMRIX_EXPORT void objectIsReference(ScriptContext* context);
TAMRIX_EXPORT void objectIsValue(ScriptContext* context);
TAMRIX_EXPORT void objectIsArray(ScriptContext* context);
TAMRIX_EXPORT void objectQueryInterface(ScriptContext* context);
TAMRIX_EXPORT void objectConvertTo(ScriptContext* context);
TAMRIX_EXPORT void objectCreateNull(ScriptContext* context);
TAMRIX_EXPORT void castObject(ScriptContext* context);
TAMRIX_EXPORT bool isNull(ScriptContext* context);
TAMRIX_EXPORT bool typeName(ScriptContext* context);

// Waits: waits.cpp.
TAMRIX_EXPORT bool snooze(ScriptContext* context);
TAMRIX_EXPORT void waitFor(ScriptContext* context);
/// How long waitFor() sleeps between two looks at its condition, in microseconds, after it has
/// waited for `elapsed` milliseconds: the longer it lasts, the slower it looks.
TAMRIX_EXPORT unsigned long waitForPause(qint64 elapsed);

// What is shown of objects: objectdisplay.cpp.
TAMRIX_EXPORT bool highlightObject(ScriptContext* context);
TAMRIX_EXPORT bool saveObjectSnapshot(ScriptContext* context);

}  // namespace Tamrix
