#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions that look for an image on the screen: (image [, options] [, region]). They
// take their arguments from the context, check them by themselves, and report with
// ScriptContext::setError(): an image that is not there is a LookupError, everything else a
// GeneralError. They return whether no error was set.

/// Looks once; a screen rectangle.
TAMRIX_EXPORT bool findImage(ScriptContext* context);
/// Looks until the image is there or the time-out is over.
TAMRIX_EXPORT bool waitForImage(ScriptContext* context);
// Verdicts: the image is, or in time is no more, on the screen.
TAMRIX_EXPORT void testImagePresent(ScriptContext* context);
TAMRIX_EXPORT void testImageNotPresent(ScriptContext* context);

}  // namespace Tamrix
