#include "runner/farm/casequeue.h"

namespace Tamrix {

namespace {

CaseTask takeFirst(std::deque<CaseTask>& tasks) {
    const CaseTask task = tasks.front();
    tasks.pop_front();
    return task;
}

}  // namespace

CaseQueue::CaseQueue(int cases, Rules rules) : m_rules(rules) {
    for (int index = 0; index < cases; ++index)
        m_tasks.push_back({.index = index});
}

CaseQueue::Step CaseQueue::nextStep(bool hasRunCases, int freshWorkers) const {
    if (m_isClosed)
        return Step::Nothing;
    if (!m_retries.empty() && !hasRunCases)
        return Step::Run;
    // Other workers need not go for a retry for which a fresh one is on its way.
    if (static_cast<int>(m_retries.size()) > freshWorkers)
        return Step::Retire;
    return m_tasks.empty() ? Step::Nothing : Step::Run;
}

CaseTask CaseQueue::take(bool hasRunCases) {
    return takeFirst(!m_retries.empty() && !hasRunCases ? m_retries : m_tasks);
}

bool CaseQueue::runsAgain(const CaseTask& task, End end) const {
    // 1. Who dies takes the case along once, whatever the number of retries.
    const bool isGivenBack = end == End::WorkerDied && !task.wasGivenBack;
    // 2. What failed has its retries.
    const bool isRetried =
        (end == End::Failed || end == End::WorkerDied) && task.attempt <= m_rules.retries;
    // 3. All else is final, and so is everything when the run ends.
    return (isGivenBack || isRetried) && !m_isClosed;
}

void CaseQueue::noteEnd(const CaseTask& task, End end) {
    if (runsAgain(task, end)) {
        m_retries.push_back(
            {task.index, task.attempt + 1, task.wasGivenBack || end == End::WorkerDied});
        return;
    }
    ++m_done;
    if (end == End::Failed || end == End::WorkerDied)
        ++m_failed;
    if (hasTooManyFailures())
        close();
}

int CaseQueue::waiting() const {
    return m_isClosed ? 0 : static_cast<int>(m_tasks.size() + m_retries.size());
}

bool CaseQueue::hasTooManyFailures() const {
    return m_rules.maxFailures > 0 && m_failed >= m_rules.maxFailures;
}

}  // namespace Tamrix
