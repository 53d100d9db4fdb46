#include "runner/farm/farmrun.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <QFile>
#include <QStringList>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>

#include "runner/processes/lastlook.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

/// How long a script that took too long may clean up behind itself, in milliseconds, before it is
/// asked again, and after that before its process is killed.
constexpr int cleanupPatience = 5000;
/// How long a process may take to end when there is nothing more for it to do.
constexpr int retirePatience = 15000;
/// Between two looks at the clock.
constexpr int tick = 1000;
/// A signal that comes as often as this ends the run at once.
constexpr int signalPatience = 3;

qint64 now() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// The signals that end a run, without those that the process was started to ignore.
sigset_t watchedSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        if ((action.sa_flags & SA_SIGINFO) != 0 || action.sa_handler != SIG_IGN)
            sigaddset(&set, signal);
    }
    return set;
}

/// Signals to wait for in place of their handlers.
int takeOver(sigset_t* oldMask) {
    // A process that is started with SIGCHLD ignored never learns how its children end.
    struct sigaction defaultAction {};
    defaultAction.sa_handler = SIG_DFL;
    ::sigaction(SIGCHLD, &defaultAction, nullptr);
    const sigset_t set = watchedSignals();
    ::sigprocmask(SIG_BLOCK, &set, oldMask);
    return ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

}  // namespace

QString progressText(const FarmProgress& progress) {
    QStringList parts{QStringLiteral("%1/%2 done")
                          .arg(QString::number(progress.done), QString::number(progress.cases))};
    if (progress.failed > 0)
        parts += QStringLiteral("%1 failed").arg(progress.failed);
    parts += QStringLiteral("%1 running").arg(progress.running);
    if (progress.timeLeft >= 0) {
        parts +=
            QStringLiteral("%1:%2 left")
                .arg(QString::number(progress.timeLeft / 60),
                     QString::number(progress.timeLeft % 60).rightJustified(2, QLatin1Char('0')));
    }
    return parts.join(QLatin1String(", "));
}

FarmRun::FarmRun(const WorkerSettings& settings, const FarmOptions& options,
                 ReportGenerator* report)
    : m_settings(settings), m_options(options), m_report(report), m_merge(report) {}

FarmRun::~FarmRun() {
    m_posts.clear();
    if (m_signals >= 0) {
        ::close(m_signals);
        ::sigprocmask(SIG_SETMASK, &m_oldMask, nullptr);
    }
}

Outcome<> FarmRun::run(const ExpectedTimes& times) {
    m_queue = std::make_unique<CaseQueue>(m_settings.cases->size(), m_options.rules);
    m_times = times;
    m_signals = takeOver(&m_oldMask);
    if (m_signals < 0)
        return fail(FailureKind::Failed, qt_error_string(errno));
    const Suite& suite = *m_settings.suite;
    m_report->add({QDateTime::currentDateTime(), SuiteStarted{suite.name, suite.directory}});

    while (m_error.isEmpty()) {
        if (const Outcome<> started = startWorkers(); !started)
            m_error = started.error().text;
        if (m_posts.empty())
            break;
        tellProgress();
        wait();
        takeSignals();
        for (const auto& post : m_posts)
            listen(*post);
        removeEnded();
    }
    // What still runs when no worker can be had has nobody to go on for it.
    m_posts.clear();
    m_report->add({QDateTime::currentDateTime(), SuiteEnded{m_interruptedBy != 0}});
    return m_error.isEmpty() ? Outcome<>() : fail(FailureKind::Failed, m_error);
}

// Workers

int FarmRun::freshWorkers() const {
    // One that retires makes room for another.
    return static_cast<int>(std::count_if(m_posts.begin(), m_posts.end(), [](const auto& post) {
        return post->state != Post::State::Running;
    }));
}

Outcome<> FarmRun::startWorkers() {
    const auto isComing = [](const auto& post) { return post->state == Post::State::Starting; };
    while (static_cast<int>(m_posts.size()) < m_options.jobs &&
           m_queue->waiting() > std::count_if(m_posts.begin(), m_posts.end(), isComing)) {
        Outcome<std::unique_ptr<Worker>> worker = Worker::start(++m_lastNumber, m_settings);
        if (!worker)
            return fail(worker.error());
        auto post = std::make_unique<Post>();
        post->worker = std::move(*worker);
        m_posts.push_back(std::move(post));
    }
    return {};
}

void FarmRun::listen(Post& post) {
    while (const std::optional<Worker::Message> message = post.worker->takeMessage()) {
        if (message->kind == Worker::Message::HasLooked) {
            post.timeOut = Post::TimeOut::Killed;
            post.worker->kill();
            return;
        }
        const bool isLast = message->kind == Worker::Message::LastCaseDone;
        if ((isLast || message->kind == Worker::Message::CaseDone) &&
            post.state == Post::State::Running) {
            post.error = message->error;
            endCase(post, false);
        } else if (!message->error.isEmpty()) {
            m_error = message->error;
            m_queue->close();
            return;
        }
        if (isLast)
            retire(post);
        else if (post.state != Post::State::Retiring)
            giveWork(post);
    }
    if (post.state == Post::State::Running)
        checkTimeOut(post);
    else if (post.state == Post::State::Retiring && now() >= post.start + retirePatience)
        post.worker->kill();
}

void FarmRun::giveWork(Post& post) {
    // In any case it will not be what it was; only the others count.
    post.state = Post::State::Running;
    const CaseQueue::Step step = m_queue->nextStep(post.hasRunCases, freshWorkers());
    // One whose case took too long ends by itself.
    post.start = now();
    if (step != CaseQueue::Step::Run || post.timeOut != Post::TimeOut::None || post.isGone) {
        retire(post);
        return;
    }
    post.task = m_queue->take(post.hasRunCases);
    post.hasRunCases = true;
    post.worker->run(post.task);
}

void FarmRun::retire(Post& post) {
    post.state = Post::State::Retiring;
    post.start = now();
    post.worker->retire();
}

void FarmRun::endCase(Post& post, bool hasDied) {
    const SuiteCase& testCase = m_settings.cases->at(post.task.index);
    CaseMerge::Case known{testCase.name, testCase.script, post.task.attempt, {}, {}, {}, false};
    known.isInterrupted = hasDied && m_interruptedBy != 0;
    if (post.timeOut != Post::TimeOut::None) {
        known.error =
            QStringLiteral("The test case took longer than %1 s").arg(m_options.caseTimeout);
        known.detail =
            hasDied
                ? QStringLiteral("It did not react when it was ended, so its process was killed")
                : QStringLiteral("It was ended where it stood");
        known.errorTime = post.timeOutTime;
    } else if (hasDied && !known.isInterrupted) {
        known.error = QStringLiteral("The process of the test case has ended");
        known.detail = post.worker->end().text;
        if (m_queue->runsAgain(post.task, CaseQueue::End::WorkerDied))
            known.detail += QStringLiteral("; another process runs the test case again");
    }
    const QString journal = spoolFile(m_settings.spoolFolder, post.worker->number());
    const CaseMerge::Result result = m_merge.merge(journal, known);
    QFile::remove(journal);
    for (const QString& problem : {post.error, result.problem}) {
        if (!problem.isEmpty())
            tell(problem);
    }

    m_measuredTime += result.seconds;
    ++m_measuredCases;
    const bool hasFailed =
        result.outcome == CaseOutcome::Failed || result.outcome == CaseOutcome::Error;
    const bool isInterrupted = result.outcome == CaseOutcome::Interrupted || m_interruptedBy != 0;
    const bool wasKilledByUs = post.timeOut != Post::TimeOut::None;
    const CaseQueue::End end = isInterrupted               ? CaseQueue::End::Interrupted
                               : hasDied && !wasKilledByUs ? CaseQueue::End::WorkerDied
                               : hasFailed                 ? CaseQueue::End::Failed
                                                           : CaseQueue::End::Passed;
    m_queue->noteEnd(post.task, end);
    if (hasDied && !isInterrupted && !wasKilledByUs) {
        tell(QStringLiteral("the process that ran '%1' has ended before its time: %2")
                 .arg(displayName(testCase), post.worker->end().text));
    }
    if (post.task.attempt > 1 && end == CaseQueue::End::Passed)
        ++m_flaky;
}

void FarmRun::removeEnded() {
    for (const auto& post : m_posts) {
        post->isGone = post->worker->hasEnded();
        if (!post->isGone)
            continue;
        // It may have said something just before.
        listen(*post);
        if (post->state == Post::State::Running)
            endCase(*post, true);
        else if (post->state == Post::State::Starting && m_interruptedBy == 0 && m_error.isEmpty())
            m_error =
                QStringLiteral("a process for test cases has ended before it could run any: %1")
                    .arg(post->worker->end().text);
    }
    std::erase_if(m_posts, [](const auto& post) { return post->isGone; });
}

// Time

void FarmRun::checkTimeOut(Post& post) {
    if (m_options.caseTimeout == 0)
        return;
    using TimeOut = Post::TimeOut;
    // 1. The script is asked to end where it stands, 2. asked again, for a clean-up that hangs,
    // 3. looked at, 4. killed, at the latest when the look should be over.
    const qint64 limit = post.start + m_options.caseTimeout * qint64(1000);
    const qint64 time = now();
    if (post.timeOut == TimeOut::None && time >= limit) {
        post.timeOut = TimeOut::Asked;
        post.timeOutTime = QDateTime::currentDateTime();
        post.worker->ask(SIGINT, true);
    } else if (post.timeOut == TimeOut::Asked && time >= limit + cleanupPatience) {
        post.timeOut = TimeOut::AskedAgain;
        post.worker->ask(SIGINT, true);
    } else if (post.timeOut == TimeOut::AskedAgain && time >= limit + 2 * cleanupPatience) {
        post.timeOut = TimeOut::Looking;
        post.worker->look();
    } else if (post.timeOut == TimeOut::Looking &&
               time >= limit + 2 * cleanupPatience + 2000 * LastLook::patience) {
        post.timeOut = TimeOut::Killed;
        post.worker->kill();
    }
}

int FarmRun::millisecondsToWait() const {
    if (m_options.caseTimeout == 0)
        return tick;
    qint64 wait = tick;
    for (const auto& post : m_posts) {
        if (post->state == Post::State::Running && post->timeOut == Post::TimeOut::None)
            wait = std::min(wait, post->start + m_options.caseTimeout * qint64(1000) - now());
    }
    return static_cast<int>(std::max<qint64>(wait, 0));
}

double FarmRun::expectedTimeLeft() const {
    if (m_measuredCases == 0)
        return -1;
    const double average = m_measuredTime / m_measuredCases;
    double left = average * m_queue->waiting();
    const qint64 time = now();
    for (const auto& post : m_posts) {
        if (post->state != Post::State::Running)
            continue;
        const double known = m_times.empty() ? -1 : m_times[static_cast<size_t>(post->task.index)];
        left += std::max(
            0.0, (known < 0 ? average : known) - static_cast<double>(time - post->start) / 1000);
    }
    return left / m_options.jobs;
}

void FarmRun::tellProgress() {
    if (!m_progressHandler)
        return;
    FarmProgress progress;
    progress.cases = m_settings.cases->size();
    progress.done = m_queue->done();
    progress.failed = m_queue->failed();
    progress.running =
        static_cast<int>(std::count_if(m_posts.begin(), m_posts.end(), [](const auto& post) {
            return post->state == Post::State::Running;
        }));
    const double left = expectedTimeLeft();
    progress.timeLeft = left < 0 ? -1 : qRound(left);
    m_progressHandler(progress);
}

// Signals

void FarmRun::wait() {
    std::vector<pollfd> watched{{m_signals, POLLIN, 0}};
    for (const auto& post : m_posts)
        watched.push_back({post->worker->descriptor(), POLLIN, 0});
    ::poll(watched.data(), watched.size(), millisecondsToWait());
}

void FarmRun::takeSignals() {
    signalfd_siginfo info{};
    while (::read(m_signals, &info, sizeof info) == sizeof info) {
        const int signal = static_cast<int>(info.ssi_signo);
        if (signal == SIGCHLD)
            continue;
        if (m_interruptedBy == 0)
            m_interruptedBy = signal;
        m_queue->close();
        handOn(signal, info.ssi_code == SI_KERNEL);
    }
}

void FarmRun::handOn(int signal, bool isFromTerminal) {
    ++m_signalCount;
    if (m_signalCount == signalPatience - 1)
        tell(QStringLiteral("interrupt once more to end at once"));
    for (const auto& post : m_posts) {
        // The terminal sends its own signals to the workers as well.
        if (!isFromTerminal)
            post->worker->ask(signal, false);
    }
}

}  // namespace Tamrix
