#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions that read what is written on the screen. They take their arguments from the
// context, check them by themselves, and report with ScriptContext::setError(): a text that is not
// there is a LookupError, everything else a GeneralError. Those that return a bool return whether
// no error was set.

/// ([options [, region]]): all text.
TAMRIX_EXPORT bool getOcrText(ScriptContext* context);
/// ([options [, region]]): a list of maps, one for each word, with "text" and "location".
TAMRIX_EXPORT bool getAllOcrText(ScriptContext* context);
/// (text [, options] [, region]): a list of screen rectangles.
TAMRIX_EXPORT bool findAllOcrText(ScriptContext* context);

// (text [, options] [, region])

/// Looks once; a screen rectangle.
TAMRIX_EXPORT bool findOcrText(ScriptContext* context);
/// Looks until the text is there or the time-out is over.
TAMRIX_EXPORT bool waitForOcrText(ScriptContext* context);
// Verdicts: the text is, or in time is no more, on the screen.
TAMRIX_EXPORT void testOcrTextPresent(ScriptContext* context);
TAMRIX_EXPORT void testOcrTextNotPresent(ScriptContext* context);

}  // namespace Tamrix
