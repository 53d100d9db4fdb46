#pragma once

#include <QString>

#include "base/export.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

class ScriptContext;

// What all functions that write a result decide in the same way.

/// Whether a result of this type carries the full call stack.
TAMRIX_EXPORT bool wantCallStackForResult(int type);

/// Takes a screenshot when the options ask for one with a result of this type. Returns the text to
/// append to the result's message, else an empty text.
TAMRIX_EXPORT QString screenshotForResult(TestResult::ResultType type);

/// Adds a result now, at the position and with the call stack that its type wants. `explanation` is
/// what reports show beside the detail. Dropped without a result sink.
TAMRIX_EXPORT void addScriptResult(ScriptContext* context, TestResult::ResultType type,
                                   const QString& message, const QString& detail,
                                   const QString& comment = QString(),
                                   const QString& explanation = QString());

/// The text with which a verdict ends the script: "%1: %2" with message and detail, or "%1: %2, %3"
/// with message, comment and detail.
TAMRIX_EXPORT QString formatThrowMessage(const QString& message, const QString& detail,
                                         const QString& comment);

/// Stops in the debugger when there is one and it is interactive.
TAMRIX_EXPORT void launchDebugger();

/// What a failure does to the run: a stop in the debugger, an error, or nothing, as the settings
/// say. True when an error was set; the calling function then ends without a result.
TAMRIX_EXPORT bool failureAction(ScriptContext* context, const QString& message,
                                 const QString& detail, const QString& comment);

}  // namespace Tamrix
