#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <deque>
#include <vector>

#include "base/export.h"
#include "platform/testresult/reportevent.h"

namespace Tamrix {

/// How a test case came out.
enum class CaseOutcome {
    Passed,
    Flaky,        ///< passed when it ran again
    Failed,       ///< its first failure is a failed verdict: Fail, UnexpectedPass
    Error,        ///< its first failure is a script error: Error, Fatal
    Skipped,      ///< skipped as a whole, without a failure
    Incomplete,   ///< it never ended: the runner was killed
    Interrupted,  ///< ended from outside before its time
};

/// The word for an outcome that follows a number: "passed", "failed", ...
TAMRIX_EXPORT QString outcomeText(CaseOutcome outcome);

/// What the entries of something that runs add up to.
struct TAMRIX_EXPORT Tally {
    /// Interrupted and Incomplete come first, then a failure, then a skip, then whether an earlier
    /// attempt was needed. Warnings, expected fails and echoes are no failures.
    CaseOutcome outcome() const;
    /// From its start to its end, or to its last entry when it never ended.
    double seconds() const;

    /// Unique in the run, counted from 0 in the order in which suites, cases and scenarios start.
    int id = 0;
    QString name;
    /// The script of a case, the folder of a suite, the feature file of a scenario.
    QString path;
    QDateTime start;
    QDateTime end;
    bool isEnded = false;
    bool isInterrupted = false;
    /// It ran before, and did not pass.
    bool hasEarlierAttempt = false;
    /// Results by TestResult::ResultType, without echoes.
    QMap<int, int> counts;
    /// The failed verdicts and script errors as they were added.
    std::vector<ResultAdded> failures;
    bool isSkipped = false;
    /// Message and detail of the skip.
    QString skipText;
};

/// A scenario of a feature, or a row of an outline's examples, with the row behind the name.
struct ScenarioTally : Tally {
    QString feature;
    /// In the feature file.
    int line = 0;
    /// The step in which something failed first, with its keyword; empty when it was none.
    QString failedStep;
};

/// One test case, or what belongs to none of a suite's cases.
struct CaseTally : Tally {
    int attempt = 1;
    /// The attempt before this one; null for a first one. Owned by the same tally.
    const CaseTally* previous = nullptr;
    /// The case ran again behind this attempt, which counts for nothing any more.
    bool isSuperseded = false;
    /// Those that ran.
    std::deque<ScenarioTally> scenarios;
    /// The failures that belong to no scenario.
    std::vector<ResultAdded> failuresOutsideScenarios;
};

/// One suite of a run.
struct TAMRIX_EXPORT SuiteTally {
    /// The suite itself: name, times, and what happened outside its cases.
    CaseTally outside;
    /// Each attempt stands for itself, as they started.
    std::deque<CaseTally> cases;
};

/// Adds up the entries of a run: outcomes, counts, durations, failures. Of a case that ran again,
/// only the last attempt counts. Takes entries in any order
/// without fail; ones outside a suite get a suite without a name. Script thread only.
class TAMRIX_EXPORT RunTally {
public:
    /// Returns what the entry belongs to: the running case, else its suite. The reference stays
    /// valid while the tally lives.
    const CaseTally& add(const ReportEntry& entry);

    const std::deque<SuiteTally>& suites() const { return m_suites; }
    /// Null when no case is running.
    const CaseTally* runningCase() const { return m_runningCase; }
    /// The scenario to which the entry that was added last belongs, its end included; null when it
    /// belongs to none.
    const ScenarioTally* scenario() const { return m_scenario; }

    int caseCount() const;
    int caseCount(CaseOutcome outcome) const;
    /// Results of one TestResult::ResultType in the whole run.
    int resultCount(int type) const;
    /// Whether there was a failed verdict or a script error anywhere, outside the cases too.
    bool anyFailure() const;
    /// Failures that happened outside the cases.
    int failureCountOutsideCases() const;
    /// Whether a suite or a case was interrupted.
    bool isInterrupted() const;
    /// Whether a suite or a case never ended.
    bool isIncomplete() const;
    /// From the first start of a suite to the last entry.
    double seconds() const;

private:
    void startSuite(const SuiteStarted& suite, const QDateTime& time);
    void startCase(const CaseStarted& testCase, const QDateTime& time);
    /// The running suite, or one without a name that starts at `time`.
    CaseTally& suiteSelf(const QDateTime& time);
    void addToScenario(CaseTally& tally, const ReportEntry& entry);
    void startSection(CaseTally& tally, const SectionStarted& section, const QDateTime& time);
    void leaveScenario();

    std::deque<SuiteTally> m_suites;
    CaseTally* m_runningCase = nullptr;
    ScenarioTally* m_scenario = nullptr;
    /// Titles of the feature and the outline that are open, and the running step.
    QString m_feature;
    QString m_outline;
    QString m_step;
    int m_nextId = 0;
};

}  // namespace Tamrix
