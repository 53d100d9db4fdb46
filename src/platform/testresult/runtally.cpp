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

void endTally(CaseTally& tally, const ReportEntry& entry) {
    tally.isEnded = true;
    tally.isInterrupted = entry.extra == QLatin1String("interrupted");
}

void addResult(CaseTally& tally, const ReportEntry& entry) {
    if (entry.echo)
        return;
    ++tally.counts[entry.type];
    if (isFailure(entry))
        tally.failures.push_back(entry);
    if (isCaseSkip(entry)) {
        tally.isSkipped = true;
        tally.skipText = messageText(entry);
    }
}

}  // namespace

QString outcomeText(CaseOutcome outcome) {
    switch (outcome) {
        case CaseOutcome::Passed:
            return QStringLiteral("passed");
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

CaseOutcome CaseTally::outcome() const {
    if (!isEnded)
        return CaseOutcome::Incomplete;
    if (isInterrupted)
        return CaseOutcome::Interrupted;
    if (!failures.empty()) {
        const ResultTypeInfo* info = resultTypeInfo(failures.front().type);
        return info && info->isVerdict ? CaseOutcome::Failed : CaseOutcome::Error;
    }
    return isSkipped ? CaseOutcome::Skipped : CaseOutcome::Passed;
}

double CaseTally::seconds() const {
    return secondsBetween(start, end);
}

const CaseTally& RunTally::add(const ReportEntry& entry) {
    using Kind = ReportEntry::Kind;
    if (entry.kind == Kind::SuiteStart)
        startSuite(entry);
    CaseTally& suite = suiteSelf(entry);
    suite.end = entry.time;

    if (entry.kind == Kind::CaseStart) {
        CaseTally& started = m_suites.back().cases.emplace_back();
        started.id = m_nextId++;
        started.name = entry.message;
        started.path = entry.path;
        started.start = entry.time;
        m_runningCase = &started;
    }
    if (entry.kind == Kind::SuiteEnd) {
        endTally(suite, entry);
        m_runningCase = nullptr;
        return suite;
    }

    CaseTally& tally = m_runningCase ? *m_runningCase : suite;
    tally.end = entry.time;
    if (entry.kind == Kind::Result) {
        addResult(tally, entry);
        m_anyFailure = m_anyFailure || isFailure(entry);
    }
    if (entry.kind == Kind::CaseEnd && m_runningCase) {
        endTally(tally, entry);
        m_runningCase = nullptr;
    }
    return tally;
}

int RunTally::caseCount() const {
    int count = 0;
    for (const SuiteTally& suite : m_suites)
        count += int(suite.cases.size());
    return count;
}

int RunTally::caseCount(CaseOutcome outcome) const {
    int count = 0;
    for (const SuiteTally& suite : m_suites) {
        count += int(std::count_if(
            suite.cases.begin(), suite.cases.end(),
            [outcome](const CaseTally& testCase) { return testCase.outcome() == outcome; }));
    }
    return count;
}

int RunTally::resultCount(int type) const {
    int count = 0;
    for (const SuiteTally& suite : m_suites) {
        count += suite.outside.counts.value(type);
        for (const CaseTally& testCase : suite.cases)
            count += testCase.counts.value(type);
    }
    return count;
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

void RunTally::startSuite(const ReportEntry& entry) {
    CaseTally& started = m_suites.emplace_back().outside;
    started.id = m_nextId++;
    started.name = entry.message;
    started.path = entry.path;
    started.start = entry.time;
    m_runningCase = nullptr;
}

CaseTally& RunTally::suiteSelf(const ReportEntry& entry) {
    // What comes after the end of a suite still counts for it.
    if (m_suites.empty()) {
        CaseTally& unnamed = m_suites.emplace_back().outside;
        unnamed.id = m_nextId++;
        unnamed.start = entry.time;
        // Nobody started it, so that nobody has to end it.
        unnamed.isEnded = true;
    }
    return m_suites.back().outside;
}

}  // namespace Tamrix
