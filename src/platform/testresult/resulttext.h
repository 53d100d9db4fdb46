#pragma once

#include <QString>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"

// The form in which entries are told to a person, the same in all reports.

namespace Tamrix {

/// "FILE:LINE", the file alone for a position without a line, empty for none.
TAMRIX_EXPORT QString positionText(const LineInfo& position);

/// Message and detail in one: "MESSAGE: DETAIL", or the one of the two that is not empty.
TAMRIX_EXPORT QString messageText(const ReportEntry& entry);

/// A result in full, without a line feed at the end:
///
///     FILE:LINE: TYPE: MESSAGE
///     DETAIL
///     Comment: COMMENT
///     called from FILE:LINE
///
/// Lines that would be empty are left out; the last form stands once for each further position of
/// the call stack. Texts may have lines of their own.
TAMRIX_EXPORT QString describeResult(const ReportEntry& entry);

}  // namespace Tamrix
