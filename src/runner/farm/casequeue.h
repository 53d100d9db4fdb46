#pragma once

#include <deque>

#include "runner/farm/casetask.h"

namespace Tamrix {

/// Which case runs next, and which again. Plain logic: knows no processes.
class CaseQueue {
public:
    /// When cases run again, and when no further one starts.
    struct Rules {
        /// How often a failed case runs again.
        int retries = 0;
        /// So many failed cases end the run; 0 for none.
        int maxFailures = 0;
    };

    /// How an attempt came out.
    enum class End {
        Passed,
        Failed,
        WorkerDied,  ///< the process that ran it has ended
        Interrupted  ///< the run ends; the case is not to run again
    };

    /// What a worker is to do now.
    enum class Step {
        Run,     ///< the task that take() gives
        Retire,  ///< it has run cases, and what is next needs one that has not
        Nothing  ///< there is nothing for it
    };

    /// Of so many cases, in the order of their indexes.
    CaseQueue(int cases, Rules rules);

    /// `hasRunCases` tells of the worker that asks, `freshWorkers` how many are on their way that
    /// have run none.
    Step nextStep(bool hasRunCases, int freshWorkers) const;
    /// The task for a worker whose next step is to run one.
    CaseTask take(bool hasRunCases);

    /// Whether a case whose attempt ends like this runs once more.
    bool runsAgain(const CaseTask& task, End end) const;
    /// An attempt has ended.
    void noteEnd(const CaseTask& task, End end);

    /// Nothing starts any more.
    void close() { m_isClosed = true; }
    /// Cases that a worker could start now.
    int waiting() const;
    /// Cases that have not started and never will, once the queue is closed.
    int neverStarted() const { return static_cast<int>(m_tasks.size()); }
    /// Cases that are not to run again.
    int done() const { return m_done; }
    int failed() const { return m_failed; }
    /// Whether failures have closed the queue.
    bool hasTooManyFailures() const;

private:
    Rules m_rules;
    std::deque<CaseTask> m_tasks;
    /// For workers that have run no case yet.
    std::deque<CaseTask> m_retries;
    bool m_isClosed = false;
    int m_done = 0;
    int m_failed = 0;
};

}  // namespace Tamrix
