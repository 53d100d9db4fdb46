#pragma once

#include <QString>
#include <array>

#include "base/export.h"
#include "platform/testresult/runtally.h"

// A run in a few words, the same in all reports.

namespace Tamrix {

/// Every outcome of a case, in the order in which summaries list them.
TAMRIX_EXPORT extern const std::array<CaseOutcome, 7> caseOutcomes;

/// "3 cases: 1 passed, 2 failed"; outcomes that no case has are left out.
TAMRIX_EXPORT QString caseSummary(const RunTally& tally);

/// "passes 12, fails 1" for the results of the run or of one case, empty when there is none.
TAMRIX_EXPORT QString resultSummary(const RunTally& tally);
TAMRIX_EXPORT QString resultSummary(const CaseTally& tally);

/// "Failures outside the cases: 1", empty when there is none.
TAMRIX_EXPORT QString outsideSummary(const RunTally& tally);

/// A sentence on a run that was interrupted or came to no end; empty for any other.
TAMRIX_EXPORT QString endSummary(const RunTally& tally);

/// Whether nothing failed anywhere and the run came to its end.
TAMRIX_EXPORT bool isGood(const RunTally& tally);

}  // namespace Tamrix
