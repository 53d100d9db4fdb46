#pragma once

#include <QList>
#include <QString>
#include <csignal>
#include <functional>
#include <memory>
#include <vector>

#include "base/outcome.h"
#include "runner/farm/casemerge.h"
#include "runner/farm/casequeue.h"
#include "runner/farm/worker.h"

namespace Tamrix {

/// What a run with workers is asked to do beside its cases.
struct FarmOptions {
    int jobs = 1;
    CaseQueue::Rules rules;
    /// After so many seconds a case is ended; 0 for never.
    int caseTimeout = 0;
};

/// Where such a run stands.
struct FarmProgress {
    int cases = 0;
    int done = 0;
    int failed = 0;
    int running = 0;
    /// Seconds; -1 when nobody knows.
    int timeLeft = -1;
};

/// "12/40 done, 1 failed, 4 running, 0:35 left"
QString progressText(const FarmProgress& progress);

/// Runs the cases of a suite in several processes at once, and puts what they report into one
/// report: each case as a whole, when it has ended. Takes SIGINT, SIGTERM and SIGHUP while it runs,
/// and hands them on. Script thread only, and the only thread; one run at a time.
class FarmRun {
public:
    /// How long each case will take, in seconds; negative when that is not known.
    using ExpectedTimes = std::vector<double>;

    /// `report` is not owned and outlives the run. `settings` name a folder that is there.
    FarmRun(const WorkerSettings& settings, const FarmOptions& options, ReportGenerator* report);
    ~FarmRun();

    /// Is called when the progress has changed, and each second.
    void setProgressHandler(std::function<void(const FarmProgress&)> handler) {
        m_progressHandler = std::move(handler);
    }

    /// Runs the cases of the settings, in their order. Fails when a worker can't run any case; what
    /// has run by then is reported. Call it once.
    Outcome<> run(const ExpectedTimes& times);

    int interruptedBy() const { return m_interruptedBy; }
    int failedCases() const { return m_queue->failed(); }
    int flakyCases() const { return m_flaky; }
    int skippedCases() const { return m_queue->neverStarted(); }

private:
    /// A worker with what it does now.
    struct Post {
        enum class State { Starting, Running, Retiring };
        /// How far a case that takes too long has been dealt with.
        enum class TimeOut { None, Asked, AskedAgain, Looking, Killed };

        std::unique_ptr<Worker> worker;
        State state = State::Starting;
        CaseTask task;
        bool hasRunCases = false;
        /// Its process has been seen to have ended.
        bool isGone = false;
        /// When the state began.
        qint64 start = 0;
        TimeOut timeOut = TimeOut::None;
        QDateTime timeOutTime;
        /// The journal of its case could not be written.
        QString error;
    };

    Outcome<> startWorkers();
    /// Workers that will have run no case when they ask for one.
    int freshWorkers() const;
    void wait();
    void takeSignals();
    void handOn(int signal, bool isFromTerminal);
    void listen(Post& post);
    void giveWork(Post& post);
    void retire(Post& post);
    void endCase(Post& post, bool hasDied);
    void checkTimeOut(Post& post);
    void removeEnded();
    void tellProgress();
    int millisecondsToWait() const;
    double expectedTimeLeft() const;

    WorkerSettings m_settings;
    FarmOptions m_options;
    ReportGenerator* m_report;
    CaseMerge m_merge;
    std::unique_ptr<CaseQueue> m_queue;
    std::vector<std::unique_ptr<Post>> m_posts;
    std::function<void(const FarmProgress&)> m_progressHandler;
    ExpectedTimes m_times;
    double m_measuredTime = 0;
    int m_measuredCases = 0;
    int m_signals = -1;
    sigset_t m_oldMask{};
    int m_interruptedBy = 0;
    int m_signalCount = 0;
    int m_flaky = 0;
    int m_lastNumber = 0;
    /// Why no worker can run cases; empty while one can.
    QString m_error;
};

}  // namespace Tamrix
