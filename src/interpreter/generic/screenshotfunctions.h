#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions that take pictures of the application. They take their arguments from the
// context, check them by themselves, and report with ScriptContext::setError(). Functions that
// return a bool return whether no error was set.

/// A Screenshot of the desktop of the application.
TAMRIX_EXPORT bool grabDesktopScreenshot(ScriptContext* context);
/// (object [, options]): a Screenshot of the object, a plain Image where its place isn't known.
TAMRIX_EXPORT void objectGrabScreenshot(ScriptContext* context);
/// (filename): writes a picture of the desktop; the suffix says in which format.
TAMRIX_EXPORT bool saveDesktopScreenshot(ScriptContext* context);

}  // namespace Tamrix
