#include "runner/farm/casemerge.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "platform/testresult/journalreader.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

/// Hands the entries of one case on, completes them, and adds them up.
class CaseEntries : public ReportGenerator {
public:
    CaseEntries(ReportGenerator* report, const CaseMerge::Case& testCase,
                std::vector<EnvironmentFact>* facts)
        : m_report(report), m_case(testCase), m_facts(facts) {}

    void add(const ReportEntry& entry) override {
        m_lastTime = entry.time;
        // 1. The frame of the whole is somebody else's, and so is what comes behind the case.
        if (eventOf<SuiteStarted>(entry) || eventOf<SuiteEnded>(entry) || m_tally.caseCount() > 0)
            return addWithin(entry);
        // 2. The case begins.
        if (eventOf<CaseStarted>(entry))
            return forward(entry);
        // 3. Facts in front of it are the same for all cases of a worker.
        if (const auto* fact = eventOf<EnvironmentFact>(entry)) {
            if (std::find(m_facts->begin(), m_facts->end(), *fact) != m_facts->end())
                return;
            m_facts->push_back(*fact);
        }
        m_report->add(entry);
    }

    /// Ends what has no end, whatever became of the case.
    void complete() {
        if (m_tally.caseCount() == 0) {
            forward({QDateTime::currentDateTime(),
                     CaseStarted{m_case.name, m_case.script, m_case.attempt}});
        }
        if (m_tally.runningCase()) {
            // Not before what happened last.
            const QDateTime time = std::max(m_lastTime, QDateTime::currentDateTime());
            addError(time, {});
            while (!m_sections.empty())
                endSection(time);
            forward({time, CaseEnded{m_case.isInterrupted}});
        }
    }

    const CaseTally& result() const { return m_tally.suites().back().cases.back(); }

private:
    void addWithin(const ReportEntry& entry) {
        if (!m_tally.runningCase() || eventOf<SuiteStarted>(entry) || eventOf<SuiteEnded>(entry))
            return;
        if (const auto* section = eventOf<SectionStarted>(entry))
            m_sections.push_back(*section);
        if (eventOf<SectionEnded>(entry) && !m_sections.empty())
            m_sections.pop_back();
        // What ended the script stands in front of how it ended.
        const auto* const result = eventOf<ResultAdded>(entry);
        if (result && isFailure(*result) && m_case.errorTime.isValid() &&
            entry.time >= m_case.errorTime)
            addError(entry.time, result->callStack);
        if (eventOf<CaseEnded>(entry))
            addError(entry.time, {});
        forward(entry);
    }

    /// Once.
    void addError(const QDateTime& time, const CallStack& stack) {
        if (m_case.error.isEmpty() || std::exchange(m_hasError, true))
            return;
        ResultAdded error;
        error.type = TestResult::Error;
        error.message = m_case.error;
        error.detail = m_case.detail;
        error.callStack = stack.empty() ? CallStack{LineInfo(m_case.script, 0)} : stack;
        forward({time, error});
    }

    void endSection(const QDateTime& time) {
        SectionEnded end;
        end.title = m_sections.back().title;
        end.kind = m_sections.back().kind;
        m_sections.pop_back();
        forward({time, end});
    }

    void forward(const ReportEntry& entry) {
        m_tally.add(entry);
        m_report->add(entry);
    }

    ReportGenerator* m_report;
    const CaseMerge::Case& m_case;
    std::vector<EnvironmentFact>* m_facts;
    RunTally m_tally;
    std::vector<SectionStarted> m_sections;
    bool m_hasError = false;
    QDateTime m_lastTime;
};

}  // namespace

CaseMerge::Result CaseMerge::merge(const QString& path, const Case& testCase) {
    CaseEntries entries(m_report, testCase, &m_facts);
    JournalReader reader(&entries);
    Result result;
    // A process may end before it has begun with the case.
    if (QFileInfo::exists(path) && !reader.replay(path))
        result.problem = reader.errorText();
    entries.complete();
    result.outcome = entries.result().outcome();
    result.seconds = entries.result().seconds();
    return result;
}

}  // namespace Tamrix
