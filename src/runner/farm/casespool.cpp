#include "runner/farm/casespool.h"

namespace Tamrix {

CaseSpool::CaseSpool(QString file, std::function<int()> attempt,
                     std::function<void(const QString&)> caseEnded)
    : m_file(std::move(file)), m_attempt(std::move(attempt)), m_caseEnded(std::move(caseEnded)) {}

void CaseSpool::add(const ReportEntry& entry) {
    if (const auto* started = eventOf<CaseStarted>(entry)) {
        m_journal = std::make_unique<JournalReport>(m_file);
        for (const ReportEntry& earlier : std::exchange(m_outside, {}))
            m_journal->add(earlier);
        CaseStarted numbered = *started;
        numbered.attempt = m_attempt();
        m_journal->add({entry.time, numbered});
        return;
    }
    if (!m_journal) {
        m_outside.push_back(entry);
        return;
    }
    m_journal->add(entry);
    if (!eventOf<CaseEnded>(entry))
        return;
    m_journal->finish();
    const QString error = m_journal->errorText();
    m_journal.reset();
    m_caseEnded(error);
}

}  // namespace Tamrix
