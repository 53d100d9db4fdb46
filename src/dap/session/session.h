#pragma once

#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "dap/program/debuggee.h"
#include "dap/program/journaltail.h"
#include "dap/protocol/client.h"
#include "dap/protocol/messages.h"
#include "dap/session/breakpoints.h"
#include "dap/session/exceptionfilters.h"
#include "dap/session/stopjudge.h"
#include "dap/session/values.h"

namespace Tamrix::Dap {

/// What a session is made of beside its client.
struct SessionSetUp {
    /// The program tamrixrunner.
    QString runner;
    ProgramStarter start;
    /// Waits until something has come from client or run, or the time in milliseconds is over (-1
    /// for no limit), and takes in what the client has sent.
    std::function<void(int milliseconds)> wait;
};

/// A client and the run that it debugs: from the launch to the end, through stops and restarts. The
/// requests are operations of it; what happens by itself is told the client as events.
class Session {
public:
    Session(Client& client, SessionSetUp setUp);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Takes in what the run has done since the last call.
    void update();
    /// Adds what poll() is to watch.
    void watch(std::vector<pollfd>* watched) const;
    /// Whether something is to be done soon, although nothing may come: update() is called again
    /// within some milliseconds then.
    bool hasMoreToDo() const { return m_wantsInterrupt; }
    /// Whether the client has said good-bye.
    bool isOver() const { return m_isOver; }

    // Set-up.
    /// How the client counts; one that wants something else than paths is refused.
    Outcome<> initialize(const InitializeArguments& client);
    Outcome<> launch(const LaunchArguments& arguments);
    /// Starts the run again, with other arguments if there are some.
    Outcome<> restart(const std::optional<LaunchArguments>& arguments);
    void configurationDone();

    // What stops the script.
    std::vector<Breakpoint> setBreakPoints(const QString& path,
                                           const std::vector<SourceBreakpoint>& wanted);
    Outcome<> setExceptionFilters(const std::vector<QString>& names);

    // How it goes on.
    Outcome<> resume(Resume how);
    /// The script stops at its next line, or when the step that it does is done.
    Outcome<> pause();
    /// Asks the run to end.
    void terminate();
    /// Ends the run, and the session with it.
    void end();

    // Where it stands.
    /// The name of the running case, of the suite before the first one.
    QString threadName() const;
    Outcome<std::vector<StackFrame>> stack();
    /// The stop that the client sees; null while the script runs.
    const ReportedStop* reportedStop() const { return m_reported ? &*m_reported : nullptr; }
    /// The search at which the script stands; a failure when it stands at none.
    Outcome<SearchFailure> searchFailure();
    /// Changes how it is made once more when the script goes on.
    Outcome<> setSearchState(const QJsonObject& state);
    /// What is evaluated sees the function in which the script stands; another frame is a failure.
    Outcome<Debuggee*> debuggeeAt(const std::optional<int>& frameId);
    Values& values() { return m_values; }
    /// The file in which the script stands, empty while it runs.
    QString stoppedFile() const { return m_stop ? m_stop->place.file : QString(); }
    /// The client has changed a value, or run code that may have.
    void valuesChanged();
    /// The column of the client's text as an index.
    int indexOfColumn(int column) const { return column - (m_columnsStartAt1 ? 1 : 0); }
    int columnOfIndex(int index) const { return index + (m_columnsStartAt1 ? 1 : 0); }

    static constexpr int threadId = 1;
    /// Of the function in which the script stands; its callers follow.
    static constexpr int topFrameId = 1;

private:
    Outcome<> start();
    void readJournal();
    void tell(const JournalEvent& event);
    void tell(const Notice& notice);
    void handle(const Stop& stop);
    void enterCase();
    void applyChanges();
    void act(const StopJudgement& judgement);
    void report(const ReportedStop& stop);
    void letGoOn(Resume how);
    /// What is known of where the script stands does not hold any more.
    void forgetStop();
    /// Asks the script to stop at its next line, if that does not end the run.
    void interrupt();
    void interruptInTime();
    void runEnded(int exitCode);
    /// Waits for the end of a run that was asked to end, and kills it when its time is over.
    void awaitEnd();
    void write(const QString& category, const QString& text,
               const std::optional<ScriptPlace>& place = {});
    Breakpoint described(const ScriptBreakPoint& breakPoint) const;
    Source sourceOf(const QString& file) const;
    int clientLine(int line) const { return line - (m_linesStartAt1 ? 0 : 1); }
    int lineOfClient(int line) const { return line + (m_linesStartAt1 ? 0 : 1); }

    Client& m_client;
    SessionSetUp m_setUp;
    bool m_linesStartAt1 = true;
    bool m_columnsStartAt1 = true;
    bool m_takesInvalidated = false;

    BreakPoints m_breakPoints;
    ExceptionFilters m_filters;
    bool m_filtersChanged = false;
    StopJudge m_judge;
    Values m_values;

    std::optional<LaunchArguments> m_launch;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<JournalTail> m_journal;
    std::unique_ptr<Debuggee> m_debuggee;
    QString m_caseName;
    int m_caseCount = 0;

    bool m_isConfigured = false;
    /// Run or case has begun and the script has not stopped in it yet.
    bool m_isEntering = false;
    /// A signal stops the script and does not end the run: since the script went on to a break
    /// point, once, until the end of the case.
    bool m_takesInterrupt = false;
    /// The signal is to be sent as soon as the script runs.
    bool m_wantsInterrupt = false;
    /// The script was asked to stop, and has not yet.
    bool m_isInterrupted = false;
    Resume m_lastResume = Resume::Continue;
    /// Where the script stands, whether or not the client knows.
    std::optional<Stop> m_stop;
    std::optional<ReportedStop> m_reported;
    /// Once somebody has asked for it.
    std::optional<std::vector<StackFrame>> m_stack;
    bool m_isOver = false;
};

}  // namespace Tamrix::Dap
