#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions that listen to events of an application, send it events, and press keys and
// mouse buttons. They take their arguments from the context, check them by themselves, and report
// with ScriptContext::setError(), always as a GeneralError. Functions that return a bool return
// whether no error was set.

// Events: eventfunctions.cpp.
TAMRIX_EXPORT void installEventHandler(ScriptContext* context);
TAMRIX_EXPORT void uninstallEventHandler(ScriptContext* context);
TAMRIX_EXPORT void sendEvent(ScriptContext* context);

// Mouse and keys: inputfunctions.cpp.
TAMRIX_EXPORT void mousePress(ScriptContext* context);
TAMRIX_EXPORT void mouseRelease(ScriptContext* context);
TAMRIX_EXPORT void mouseMove(ScriptContext* context);
TAMRIX_EXPORT bool keyPress(ScriptContext* context);
TAMRIX_EXPORT bool keyRelease(ScriptContext* context);

// Recorded gestures: gestures.cpp.
TAMRIX_EXPORT void readGesture(ScriptContext* context);
/// The text of the gesture file of this name. It is looked for in the folder "gestures" beside the
/// test case's script, then beside the script file that runs, then in the next folder "shared" on
/// the way up from there. The null string with `*error` set when there is none.
TAMRIX_EXPORT QString readGestureByName(const QString& name, QString* error);

}  // namespace Tamrix
