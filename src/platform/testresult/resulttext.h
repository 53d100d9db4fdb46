#pragma once

#include <QString>

#include "base/export.h"
#include "platform/testresult/reportevent.h"

// The form in which events are told to a person, the same in all reports.

namespace Tamrix {

/// "FILE:LINE", the file alone for a position without a line, empty for none.
TAMRIX_EXPORT QString positionText(const LineInfo& position);

/// Message and detail in one: "MESSAGE: DETAIL", or the one of the two that is not empty.
TAMRIX_EXPORT QString messageText(const QString& message, const QString& detail);

/// "Comment: COMMENT" for the comment of a verdict, that of other results as it is; empty when
/// there is none.
TAMRIX_EXPORT QString commentText(const ResultAdded& result);

/// A result in full, without a line feed at the end:
///
///     FILE:LINE: TYPE: MESSAGE
///     DETAIL
///     Comment: COMMENT
///     EXPLANATION
///     called from FILE:LINE
///
/// Lines that would be empty are left out; the last form stands once for each further position of
/// the call stack. Texts may have lines of their own.
TAMRIX_EXPORT QString describeResult(const ResultAdded& result);

/// An action on one line: "FILE:LINE: FUNCTION: ARGUMENTS (0.05 s)", with ", failed" behind the
/// time where it did.
TAMRIX_EXPORT QString describeAction(const ActionEnded& action);

/// What a message ends with when a screenshot belongs to it: " (Screenshot in 'PATH')".
TAMRIX_EXPORT QString screenshotNote(const QString& path);

/// Takes such a note from the end of a message and returns its path; empty when there is none.
TAMRIX_EXPORT QString takeScreenshotNote(QString* message);

}  // namespace Tamrix
