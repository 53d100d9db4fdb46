#include "dap/session/session.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <algorithm>

#include "base/overloaded.h"
#include "dap/session/language.h"
#include "dap/session/runstart.h"

namespace Tamrix::Dap {

namespace {

/// How long a run may take to end its applications and clean up, in milliseconds.
constexpr int endPatience = 10'000;

QString resultText(const ResultTold& result) {
    QString text = QStringLiteral("%1: %2").arg(result.kind, result.message);
    if (!result.detail.isEmpty())
        text += QLatin1String(": ") + result.detail;
    return text + QLatin1Char('\n');
}

/// The name that the debugger has for the kind of search; empty for a stop that is due to none.
QByteArray searchKind(const std::optional<Stop>& stop) {
    if (stop && stop->kind == StopKind::ImageNotFound)
        return "ImageLookup";
    if (stop && stop->kind == StopKind::TextNotFound)
        return "FindText";
    return {};
}

}  // namespace

Session::Session(Client& client, SessionSetUp setUp)
    : m_client(client),
      m_setUp(std::move(setUp)),
      m_judge(m_breakPoints, m_filters, [this](const QString& text, const ScriptPlace& place) {
          write(QStringLiteral("console"), text + QLatin1Char('\n'), place);
      }) {}

// Set-up

Outcome<> Session::initialize(const InitializeArguments& client) {
    if (client.pathFormat.value_or("path") != QLatin1String("path"))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'pathFormat' is '%1'; sources are told by 'path' only")
                        .arg(*client.pathFormat));
    m_linesStartAt1 = client.linesStartAt1.value_or(true);
    m_columnsStartAt1 = client.columnsStartAt1.value_or(true);
    m_takesInvalidated = client.supportsInvalidatedEvent.value_or(false);
    // What the client has to say before the script goes on can come now.
    m_client.send("initialized");
    return {};
}

Outcome<> Session::launch(const LaunchArguments& arguments) {
    if (m_debuggee)
        return fail(FailureKind::Refused, QStringLiteral("a run has been launched already"));
    m_launch = arguments;
    Outcome<> started = start();
    if (!started)
        m_launch.reset();
    return started;
}

Outcome<> Session::restart(const std::optional<LaunchArguments>& arguments) {
    if (!m_launch)
        return fail(FailureKind::Refused, QStringLiteral("no run has been launched yet"));
    if (m_debuggee) {
        terminate();
        awaitEnd();
        m_debuggee.reset();
        forgetStop();
    }
    if (arguments)
        m_launch = arguments;
    m_breakPoints.forgetHits();
    return start();
}

Outcome<> Session::start() {
    m_folder = std::make_unique<QTemporaryDir>();
    if (!m_folder->isValid())
        return fail(FailureKind::Failed, QStringLiteral("a folder for the run's results can't be "
                                                        "made: %1")
                                             .arg(m_folder->errorString()));
    const Outcome<ProgramStart> start = runStart(m_setUp.runner, *m_launch, m_folder->path());
    if (!start)
        return fail(start.error());
    m_journal = std::make_unique<JournalTail>(m_folder->filePath(QStringLiteral("journal.jsonl")));
    Outcome<std::unique_ptr<Program>> program = m_setUp.start(*start);
    if (!program)
        return fail(program.error());
    m_caseCount = 0;
    m_caseName.clear();
    m_takesInterrupt = m_wantsInterrupt = m_isInterrupted = false;
    m_isEntering = true;
    m_breakPoints.forgetDebugger();
    m_debuggee = std::make_unique<Debuggee>(
        std::move(*program),
        Debuggee::Surroundings{
            [this](int milliseconds) {
                m_setUp.wait(milliseconds);
                // An answer may never come; the end must not wait for it.
                return !m_client.hasEnded() && !m_client.isWaiting({"disconnect", "terminate"});
            },
            [this] { return m_client.isWaiting({"pause"}); },
            [this](const QString& text, Debuggee::Stream stream) {
                write(stream == Debuggee::Stream::Error ? "stderr" : "stdout", text);
            },
            [this](const Notice& notice) { tell(notice); }});
    return {};
}

void Session::configurationDone() {
    m_isConfigured = true;
    if (m_stop && m_isEntering)
        enterCase();
}

// What happens

void Session::watch(std::vector<pollfd>* watched) const {
    if (!m_debuggee)
        return;
    m_debuggee->program().watch(watched);
    m_journal->watch(watched);
}

void Session::update() {
    if (!m_debuggee)
        return;
    m_debuggee->receive();
    // The journal is written first: it tells what has led to a stop.
    readJournal();
    while (std::optional<Stop> stop = m_debuggee->takeStop())
        handle(*stop);
    interruptInTime();
    if (const std::optional<int> exitCode = m_debuggee->exitCode())
        runEnded(*exitCode);
}

void Session::readJournal() {
    for (const JournalEvent& event : m_journal->take())
        tell(event);
}

void Session::tell(const JournalEvent& event) {
    std::visit(Overloaded{
                   [this](const CaseBegun& begun) {
                       m_caseName = begun.name;
                       m_isEntering = true;
                       m_takesInterrupt = false;
                       m_judge.caseBegan();
                   },
                   [this](const CaseEnded&) { m_takesInterrupt = m_wantsInterrupt = false; },
                   [this](const ResultTold& result) {
                       m_judge.resultTold(result);
                       write(result.isFailure ? "stderr" : "console", resultText(result),
                             result.place);
                   },
                   [this](const TextWritten& written) {
                       write(written.isError ? "stderr" : "stdout", written.text);
                   },
               },
               event);
}

void Session::tell(const Notice& notice) {
    if (notice.key == QLatin1String("ScriptError"))
        m_judge.errorTold(notice.value);
    else if (notice.key != QLatin1String("Progress"))
        write("console", QStringLiteral("%1: %2\n").arg(notice.key, notice.value));
}

void Session::handle(const Stop& told) {
    Stop stop = told;
    // A step without a definition is told by its line alone.
    if (stop.kind == StopKind::StepMissing)
        stop.place.file = m_debuggee->currentFile().value_or(QString());
    m_stop = stop;
    m_wantsInterrupt = false;
    const bool wasInterrupted = std::exchange(m_isInterrupted, false);
    if (m_isEntering) {
        ++m_caseCount;
        m_breakPoints.forgetDebugger();
        if (m_isConfigured)
            enterCase();
        return;
    }
    // What the client has changed meanwhile comes first only where the script was stopped for it:
    // what else stopped it was so before.
    if (wasInterrupted) {
        applyChanges();
        act(m_judge.judgeInterrupted(stop, *m_debuggee));
        return;
    }
    const StopJudgement judgement = m_judge.judge(stop, *m_debuggee);
    applyChanges();
    act(judgement);
}

void Session::enterCase() {
    m_isEntering = false;
    const Stop stop = *m_stop;
    if (m_launch->noDebug.value_or(false)) {
        letGoOn(Resume::Continue);
        return;
    }
    m_filtersChanged = true;
    applyChanges();
    if (m_caseCount == 1 && m_launch->stopOnEntry.value_or(false))
        report({"entry", "Stopped at the entry", {}});
    else
        act(m_judge.judgeInterrupted(stop, *m_debuggee));
}

void Session::applyChanges() {
    for (const ScriptBreakPoint* const changed : m_breakPoints.apply(*m_debuggee))
        m_client.send("breakpoint", BreakpointEvent{"changed", described(*changed)});
    if (std::exchange(m_filtersChanged, false)) {
        if (const Outcome<> applied = m_filters.apply(*m_debuggee, m_stop->place.file); !applied)
            write("stderr", applied.error().text + QLatin1Char('\n'));
    }
}

void Session::act(const StopJudgement& judgement) {
    std::visit(Overloaded{[this](const ReportedStop& stop) { report(stop); },
                          [this](const PassedStop& passed) { letGoOn(passed.how); }},
               judgement);
}

void Session::report(const ReportedStop& stop) {
    m_reported = stop;
    m_values.setFile(stoppedFile());
    StoppedEvent event;
    event.reason = stop.reason;
    event.description = stop.description;
    if (!stop.text.isNull())
        event.text = stop.text;
    event.threadId = threadId;
    if (!stop.hitBreakPoints.empty())
        event.hitBreakpointIds = stop.hitBreakPoints;
    m_client.send("stopped", event);
    if (const Outcome<SearchFailure> search = searchFailure())
        m_client.send("tamrixSearchFailed", *search);
}

Outcome<SearchFailure> Session::searchFailure() {
    const QByteArray kind = searchKind(m_stop);
    if (!m_debuggee || !m_reported || kind.isEmpty())
        return fail(FailureKind::NotReady,
                    QStringLiteral("the script does not stand at a search that failed"));
    const Outcome<QByteArray> state = m_debuggee->searchState(kind);
    if (!state)
        return fail(state.error());
    return SearchFailure{m_stop->subject, m_stop->detail, QJsonDocument::fromJson(*state).object()};
}

Outcome<> Session::setSearchState(const QJsonObject& state) {
    const Outcome<SearchFailure> search = searchFailure();
    if (!search)
        return fail(search.error());
    return m_debuggee->setSearchState(searchKind(m_stop),
                                      QJsonDocument(state).toJson(QJsonDocument::Compact));
}

void Session::forgetStop() {
    m_stop.reset();
    m_reported.reset();
    m_stack.reset();
    m_values.clear();
}

void Session::letGoOn(Resume how) {
    forgetStop();
    m_lastResume = how;
    if (how == Resume::Continue || how == Resume::SkipError)
        m_takesInterrupt = true;
    m_debuggee->resume(how);
}

void Session::runEnded(int exitCode) {
    m_debuggee.reset();
    forgetStop();
    m_client.send("exited", ExitedEvent{exitCode});
    m_client.send("terminated");
}

// What stops the script

std::vector<Breakpoint> Session::setBreakPoints(const QString& path,
                                                const std::vector<SourceBreakpoint>& wanted) {
    std::vector<SourceBreakpoint> own = wanted;
    for (SourceBreakpoint& each : own)
        each.line = lineOfClient(each.line);
    const std::vector<const ScriptBreakPoint*> set = m_breakPoints.replace(path, own);
    if (m_debuggee && m_breakPoints.hasChanges()) {
        if (m_debuggee->isStopped() && !m_isEntering) {
            m_breakPoints.apply(*m_debuggee);
        } else if (m_lastResume == Resume::Continue) {
            // A step goes on to its end before; it would be lost.
            interrupt();
        }
    }
    std::vector<Breakpoint> result;
    result.reserve(set.size());
    for (const ScriptBreakPoint* const each : set)
        result.push_back(described(*each));
    return result;
}

Outcome<> Session::setExceptionFilters(const std::vector<QString>& names) {
    if (const Outcome<> chosen = m_filters.choose(names); !chosen)
        return chosen;
    m_filtersChanged = true;
    if (m_reported)
        applyChanges();
    return {};
}

// How it goes on

Outcome<> Session::resume(Resume how) {
    if (!m_debuggee || !m_reported)
        return fail(FailureKind::NotReady, QStringLiteral("the script does not stand still"));
    m_judge.resumed(how, *m_debuggee);
    letGoOn(how);
    return {};
}

Outcome<> Session::pause() {
    if (!m_debuggee)
        return fail(FailureKind::NotReady, QStringLiteral("no script is running"));
    if (m_reported)
        return {};
    m_judge.pauseWanted();
    interrupt();
    return {};
}

void Session::interrupt() {
    if (!m_takesInterrupt)
        return;
    m_takesInterrupt = false;
    m_wantsInterrupt = true;
    interruptInTime();
}

void Session::interruptInTime() {
    // A signal before the script runs again would end the run.
    if (!m_wantsInterrupt || !m_debuggee->hasTakenCommands())
        return;
    m_wantsInterrupt = false;
    m_isInterrupted = true;
    m_debuggee->interrupt();
}

void Session::terminate() {
    if (!m_debuggee)
        return;
    if (m_debuggee->isStopped())
        m_debuggee->quit();
    else
        m_debuggee->terminate();
}

void Session::end() {
    if (m_debuggee) {
        terminate();
        awaitEnd();
        m_debuggee.reset();
    }
    m_isOver = true;
}

void Session::awaitEnd() {
    QElapsedTimer timer;
    timer.start();
    while (!m_debuggee->exitCode() && timer.elapsed() < endPatience) {
        m_setUp.wait(static_cast<int>(endPatience - timer.elapsed()));
        m_debuggee->receive();
        readJournal();
        // A stop on the way, as at a break point in a clean-up, ends there.
        if (m_debuggee->takeStop())
            m_debuggee->quit();
    }
}

// Where it stands

QString Session::threadName() const {
    if (!m_caseName.isEmpty())
        return m_caseName;
    return m_launch ? QFileInfo(m_launch->suite).fileName() : QString();
}

Outcome<std::vector<StackFrame>> Session::stack() {
    if (m_stack)
        return *m_stack;
    const Outcome<Debuggee*> debuggee = debuggeeAt(std::nullopt);
    if (!debuggee)
        return fail(debuggee.error());
    const Outcome<std::vector<ScriptPlace>> callers = (*debuggee)->callers();
    if (!callers)
        return fail(callers.error());
    const auto frame = [this](const ScriptPlace& place, int level, int column) {
        return StackFrame{topFrameId + level, functionAt(place), sourceOf(place.file),
                          clientLine(place.line), columnOfIndex(std::max(column - 1, 0))};
    };
    std::vector<StackFrame> frames = {frame(m_stop->place, 0, m_stop->column)};
    for (const ScriptPlace& place : *callers)
        frames.push_back(frame(place, static_cast<int>(frames.size()), 0));
    m_stack = frames;
    return frames;
}

Outcome<Debuggee*> Session::debuggeeAt(const std::optional<int>& frameId) {
    if (!m_debuggee || !m_stop)
        return fail(FailureKind::NotReady, QStringLiteral("the script does not stand still"));
    if (frameId.value_or(topFrameId) != topFrameId)
        return fail(
            FailureKind::Refused,
            QStringLiteral("only the function in which the script stands can be looked into"));
    return m_debuggee.get();
}

void Session::valuesChanged() {
    m_values.refresh();
    if (m_takesInvalidated)
        m_client.send("invalidated", InvalidatedEvent{{"variables"}});
}

// What the client is told

void Session::write(const QString& category, const QString& text,
                    const std::optional<ScriptPlace>& place) {
    OutputEvent event{category, text};
    if (place) {
        event.source = sourceOf(place->file);
        event.line = clientLine(place->line);
    }
    m_client.send("output", event);
}

Breakpoint Session::described(const ScriptBreakPoint& breakPoint) const {
    using State = ScriptBreakPoint::State;
    Breakpoint result;
    result.id = breakPoint.id;
    result.verified = breakPoint.state == State::Set || breakPoint.state == State::Buffered;
    if (breakPoint.state == State::Waiting)
        result.message = QStringLiteral("It takes effect when the script stops next.");
    else if (breakPoint.state == State::Buffered)
        result.message = QStringLiteral("The script has not loaded this file yet.");
    else if (breakPoint.state == State::Refused)
        result.message = breakPoint.problem;
    result.source = sourceOf(breakPoint.place.file);
    result.line = clientLine(breakPoint.place.line);
    return result;
}

Source Session::sourceOf(const QString& file) const {
    const QString path = m_breakPoints.clientPath(file);
    return {QFileInfo(path).fileName(), path};
}

}  // namespace Tamrix::Dap
