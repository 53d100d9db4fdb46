#pragma once

#include <QString>
#include <array>

#include "base/export.h"
#include "platform/testresult/reportevent.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

/// What is known of a kind of result.
struct ResultTypeInfo {
    TestResult::ResultType type;
    /// The word for it in reports, in the form in which it begins a line.
    const char* name;
    /// Its category for TestResult::count().
    const char* category;
    /// Whether it says that something was checked.
    bool isVerdict;
    /// Whether it makes a test case fail: a failed verdict or a script error.
    bool isFailure;
};

/// Every kind of result, in the order in which summaries list them.
TAMRIX_EXPORT extern const std::array<ResultTypeInfo, 9> resultTypes;

/// Null for a number that is no kind of result.
TAMRIX_EXPORT const ResultTypeInfo* resultTypeInfo(int type);

/// The name of a kind of result, "Result N" for a number that is none.
TAMRIX_EXPORT QString resultTypeName(int type);

/// Whether the result is a failed verdict or a script error that counts.
TAMRIX_EXPORT bool isFailure(const ResultAdded& result);

/// Whether the result says that the whole test case is skipped.
TAMRIX_EXPORT bool isCaseSkip(const ResultAdded& result);

}  // namespace Tamrix
