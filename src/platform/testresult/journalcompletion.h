#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

/// What was found in a journal that was completed.
struct JournalCompletion {
    /// The whole entries that were there before.
    int entryCount = 0;
    /// The cases that had started.
    int caseCount = 0;
    /// Why it could not be completed; empty on success.
    QString error;
};

/// Completes the journal of a run whose process ended before its time: cuts off a line that was not
/// written to its end, adds an Error result of this message and detail to the case that is open, or
/// else to the suite, and ends what is open, the suite as interrupted. A journal that is complete
/// gets the result alone. `path` must be a regular file that nobody writes to.
TAMRIX_EXPORT JournalCompletion completeJournal(const QString& path, const QString& message,
                                                const QString& detail);

}  // namespace Tamrix
