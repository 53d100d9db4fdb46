#include "platform/testresult/runsummary.h"

#include <QStringList>

#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

/// `countOf` gives the number of results of a type.
template <typename CountOf>
QString joinedCounts(CountOf countOf) {
    QStringList results;
    for (const ResultTypeInfo& info : resultTypes) {
        if (const int count = countOf(info.type))
            results +=
                QStringLiteral("%1 %2").arg(QLatin1String(info.category), QString::number(count));
    }
    return results.join(QLatin1String(", "));
}

}  // namespace

const std::array<CaseOutcome, 7> caseOutcomes = {
    CaseOutcome::Passed,  CaseOutcome::Flaky,       CaseOutcome::Failed,     CaseOutcome::Error,
    CaseOutcome::Skipped, CaseOutcome::Interrupted, CaseOutcome::Incomplete,
};

QString caseSummary(const RunTally& tally) {
    const int caseCount = tally.caseCount();
    QStringList outcomes;
    for (const CaseOutcome outcome : caseOutcomes) {
        if (const int count = tally.caseCount(outcome))
            outcomes += QStringLiteral("%1 %2").arg(QString::number(count), outcomeText(outcome));
    }
    QString cases =
        caseCount == 1 ? QStringLiteral("1 case") : QStringLiteral("%1 cases").arg(caseCount);
    if (!outcomes.isEmpty())
        cases += QLatin1String(": ") + outcomes.join(QLatin1String(", "));
    return cases;
}

QString resultSummary(const RunTally& tally) {
    return joinedCounts([&tally](int type) { return tally.resultCount(type); });
}

QString resultSummary(const CaseTally& tally) {
    return joinedCounts([&tally](int type) { return tally.counts.value(type); });
}

QString outsideSummary(const RunTally& tally) {
    const int count = tally.failureCountOutsideCases();
    return count ? QStringLiteral("Failures outside the cases: %1").arg(count) : QString();
}

QString endSummary(const RunTally& tally) {
    if (tally.isInterrupted())
        return QStringLiteral("The run was interrupted.");
    if (tally.isIncomplete())
        return QStringLiteral("The run did not come to its end.");
    return QString();
}

bool isGood(const RunTally& tally) {
    return !tally.anyFailure() && !tally.isInterrupted() && !tally.isIncomplete();
}

}  // namespace Tamrix
