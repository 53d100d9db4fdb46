#pragma once

#include <QString>
#include <vector>

#include "base/export.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

/// Writes what happens in a feature to the results, with screenshots where the test settings ask
/// for them. Script thread only.
class TAMRIX_EXPORT BDTTestResultLogger {
public:
    /// Not owned; null drops everything.
    explicit BDTTestResultLogger(TestResult* result) : m_result(result) {}

    void addResult(TestResult::ResultType type, const QString& message, const QString& detail,
                   const LineInfo& location, const QString& sectionName, int index);
    /// An error with its call stack. `explanation` is what helps to understand it.
    void addResult(TestResult::ResultType type, const QString& message, const QString& detail,
                   const std::vector<LineInfo>& callStack, const QString& explanation = QString());
    void describeItem(const ItemDescribed& item);
    void addStepMatch(const StepMatched& match);

    bool lastScenarioHasError() const;
    void clearLastScenarioError();

private:
    TestResult* m_result;
};

}  // namespace Tamrix
