#include "platform/testresult/runtally.h"

#include <algorithm>

#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

double secondsBetween(const QDateTime& start, const QDateTime& end) {
    if (!start.isValid() || !end.isValid())
        return 0;
    // The clock may be set back while a case runs.
    return double(std::max<qint64>(0, start.msecsTo(end))) / 1000;
}

void endTally(Tally& tally, bool isInterrupted) {
    tally.isEnded = true;
    tally.isInterrupted = isInterrupted;
}

void addResult(Tally& tally, const ResultAdded& result) {
    if (result.isEcho)
        return;
    ++tally.counts[result.type];
    if (isFailure(result))
        tally.failures.push_back(result);
    if (isCaseSkip(result)) {
        tally.isSkipped = true;
        tally.skipText = messageText(result.message, result.detail);
    }
}

bool counts(const CaseTally& testCase) {
    return !testCase.isSuperseded;
}

/// The attempt that a further one of this number follows; null when there was none.
CaseTally* attemptBefore(std::deque<CaseTally>& cases, const QString& name, int attempt) {
    // A case may stand in a run several times: what passed has no further attempt.
    const auto found = std::find_if(cases.rbegin(), cases.rend(), [&](const CaseTally& each) {
        const CaseOutcome outcome = each.outcome();
        return each.name == name && each.attempt < attempt && counts(each) &&
               outcome != CaseOutcome::Passed && outcome != CaseOutcome::Flaky;
    });
    return found == cases.rend() ? nullptr : &*found;
}

}  // namespace

QString outcomeText(CaseOutcome outcome) {
    switch (outcome) {
        case CaseOutcome::Passed:
            return QStringLiteral("passed");
        case CaseOutcome::Flaky:
            return QStringLiteral("flaky");
        case CaseOutcome::Failed:
            return QStringLiteral("failed");
        case CaseOutcome::Error:
            return QStringLiteral("with errors");
        case CaseOutcome::Skipped:
            return QStringLiteral("skipped");
        case CaseOutcome::Incomplete:
            return QStringLiteral("incomplete");
        case CaseOutcome::Interrupted:
            return QStringLiteral("interrupted");
    }
    return QString();
}

CaseOutcome Tally::outcome() const {
    if (!isEnded)
        return CaseOutcome::Incomplete;
    if (isInterrupted)
        return CaseOutcome::Interrupted;
    if (!failures.empty()) {
        const ResultTypeInfo* info = resultTypeInfo(failures.front().type);
        return info && info->isVerdict ? CaseOutcome::Failed : CaseOutcome::Error;
    }
    if (isSkipped)
        return CaseOutcome::Skipped;
    return hasEarlierAttempt ? CaseOutcome::Flaky : CaseOutcome::Passed;
}

double Tally::seconds() const {
    return secondsBetween(start, end);
}

const CaseTally& RunTally::add(const ReportEntry& entry) {
    // It stayed for those who looked at the entry that ended it.
    if (m_scenario && m_scenario->isEnded)
        m_scenario = nullptr;
    if (const auto* started = eventOf<SuiteStarted>(entry))
        startSuite(*started, entry.time);
    CaseTally& suite = suiteSelf(entry.time);
    suite.end = entry.time;

    if (const auto* started = eventOf<CaseStarted>(entry))
        startCase(*started, entry.time);
    if (const auto* ended = eventOf<SuiteEnded>(entry)) {
        endTally(suite, ended->isInterrupted);
        m_runningCase = nullptr;
        leaveScenario();
        return suite;
    }

    CaseTally& tally = m_runningCase ? *m_runningCase : suite;
    tally.end = entry.time;
    if (const auto* result = eventOf<ResultAdded>(entry))
        addResult(tally, *result);
    addToScenario(tally, entry);
    if (const auto* ended = eventOf<CaseEnded>(entry); ended && m_runningCase) {
        endTally(tally, ended->isInterrupted);
        m_runningCase = nullptr;
        leaveScenario();
    }
    return tally;
}

void RunTally::addToScenario(CaseTally& tally, const ReportEntry& entry) {
    if (const auto* section = eventOf<SectionStarted>(entry))
        startSection(tally, *section, entry.time);
    const auto* const result = eventOf<ResultAdded>(entry);
    const bool hasFailed = result && isFailure(*result);
    if (hasFailed && !m_scenario)
        tally.failuresOutsideScenarios.push_back(*result);
    if (!m_scenario)
        return;
    m_scenario->end = entry.time;
    if (const auto* item = eventOf<ItemDescribed>(entry); item && !m_step.isEmpty())
        m_step = item->keyword + m_step;
    if (result)
        addResult(*m_scenario, *result);
    if (hasFailed && m_scenario->failures.size() == 1)
        m_scenario->failedStep = m_step;
    const auto* const ended = eventOf<SectionEnded>(entry);
    if (ended && ended->kind == QLatin1String("step"))
        m_step.clear();
    if (ended && (ended->kind == QLatin1String("scenario") || ended->kind == QLatin1String("row")))
        endTally(*m_scenario, false);
}

void RunTally::startSection(CaseTally& tally, const SectionStarted& section,
                            const QDateTime& time) {
    if (section.kind == QLatin1String("feature"))
        m_feature = section.title;
    else if (section.kind == QLatin1String("scenariooutline"))
        m_outline = section.title;
    else if (section.kind == QLatin1String("step"))
        m_step = section.title;
    const bool isRow = section.kind == QLatin1String("row");
    if (!isRow && section.kind != QLatin1String("scenario"))
        return;
    m_scenario = &tally.scenarios.emplace_back();
    m_scenario->id = m_nextId++;
    m_scenario->feature = m_feature;
    m_scenario->name =
        isRow ? QStringLiteral("%1 (%2)").arg(m_outline, section.title) : section.title;
    m_scenario->start = time;
    if (!section.callStack.empty()) {
        m_scenario->path = section.callStack.front().fileName();
        m_scenario->line = section.callStack.front().lineNumber();
    }
    m_step.clear();
}

void RunTally::leaveScenario() {
    // A scenario that a killed run or an error of the script cut short has no end.
    m_scenario = nullptr;
    m_step.clear();
}

int RunTally::caseCount() const {
    int count = 0;
    for (const SuiteTally& suite : m_suites)
        count += int(std::count_if(suite.cases.begin(), suite.cases.end(), counts));
    return count;
}

int RunTally::caseCount(CaseOutcome outcome) const {
    int count = 0;
    for (const SuiteTally& suite : m_suites) {
        count += int(std::count_if(suite.cases.begin(), suite.cases.end(),
                                   [outcome](const CaseTally& testCase) {
                                       return counts(testCase) && testCase.outcome() == outcome;
                                   }));
    }
    return count;
}

int RunTally::resultCount(int type) const {
    int count = 0;
    for (const SuiteTally& suite : m_suites) {
        count += suite.outside.counts.value(type);
        for (const CaseTally& testCase : suite.cases)
            count += counts(testCase) ? testCase.counts.value(type) : 0;
    }
    return count;
}

bool RunTally::anyFailure() const {
    return failureCountOutsideCases() > 0 ||
           std::any_of(m_suites.begin(), m_suites.end(), [](const SuiteTally& suite) {
               return std::any_of(suite.cases.begin(), suite.cases.end(),
                                  [](const CaseTally& testCase) {
                                      return counts(testCase) && !testCase.failures.empty();
                                  });
           });
}

int RunTally::failureCountOutsideCases() const {
    int count = 0;
    for (const SuiteTally& suite : m_suites)
        count += int(suite.outside.failures.size());
    return count;
}

bool RunTally::isInterrupted() const {
    return caseCount(CaseOutcome::Interrupted) > 0 ||
           std::any_of(m_suites.begin(), m_suites.end(),
                       [](const SuiteTally& suite) { return suite.outside.isInterrupted; });
}

bool RunTally::isIncomplete() const {
    return caseCount(CaseOutcome::Incomplete) > 0 ||
           std::any_of(m_suites.begin(), m_suites.end(),
                       [](const SuiteTally& suite) { return !suite.outside.isEnded; });
}

double RunTally::seconds() const {
    return m_suites.empty()
               ? 0
               : secondsBetween(m_suites.front().outside.start, m_suites.back().outside.end);
}

void RunTally::startSuite(const SuiteStarted& suite, const QDateTime& time) {
    CaseTally& started = m_suites.emplace_back().outside;
    started.id = m_nextId++;
    started.name = suite.name;
    started.path = suite.folder;
    started.start = time;
    m_runningCase = nullptr;
    leaveScenario();
}

void RunTally::startCase(const CaseStarted& testCase, const QDateTime& time) {
    std::deque<CaseTally>& cases = m_suites.back().cases;
    CaseTally* const previous =
        testCase.attempt > 1 ? attemptBefore(cases, testCase.name, testCase.attempt) : nullptr;
    CaseTally& started = cases.emplace_back();
    started.id = m_nextId++;
    started.name = testCase.name;
    started.path = testCase.script;
    started.start = time;
    started.attempt = testCase.attempt;
    started.previous = previous;
    started.hasEarlierAttempt = previous != nullptr;
    if (previous)
        previous->isSuperseded = true;
    m_runningCase = &started;
    leaveScenario();
}

CaseTally& RunTally::suiteSelf(const QDateTime& time) {
    // What comes after the end of a suite still counts for it.
    if (m_suites.empty()) {
        CaseTally& unnamed = m_suites.emplace_back().outside;
        unnamed.id = m_nextId++;
        unnamed.start = time;
        // Nobody started it, so that nobody has to end it.
        unnamed.isEnded = true;
    }
    return m_suites.back().outside;
}

}  // namespace Tamrix
