#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "base/outcome.h"
#include "platform/testresult/secrets.h"
#include "platform/testresult/testresult.h"
#include "runner/applications/privatehome.h"
#include "runner/debugging/frontends.h"
#include "runner/processes/processstate.h"
#include "runner/services/runner.h"
#include "runner/suites/casevideo.h"
#include "runner/suites/failuremoment.h"
#include "runner/suites/suite.h"
#include "runner/trace/casetrace.h"

namespace Tamrix {

/// What a run is asked to do beside its cases.
struct SuiteRunOptions {
    /// Ends the run behind so many cases that fail; 0 for never.
    int maxFailures = 0;
    /// Whether each case's applications get a home folder of their own.
    bool hasPrivateHomes = false;
    /// Further facts about the run, for the reports.
    QList<EnvironmentFact> facts;
    /// Whether verification points that differ are written anew.
    bool renewsVerificationPoints = false;
    /// Whether the results tell what scripts do to applications.
    bool recordsActions = true;
    /// Where attachments go: absolute, or empty for the suite's own folder.
    QString resultDirectory;
    /// For the scripts.
    QStringList scriptArguments;
    /// Where applications appear: see Applications::useDisplay().
    QString display;
    /// Which scenarios of features run; see gherkinFilterByArgs().
    QStringList tagFilters = {};
    std::vector<unsigned> scenarios = {};
    /// Who drives the debugger, in which each case then stops at its first line.
    DebuggerDialogue debugger = DebuggerDialogue::None;
    VideoMode video = VideoMode::Off;
    TraceMode trace = TraceMode::Off;
    /// Where the trace goes: a folder that createTraceFolder() has made.
    QString traceFolder;
    /// Whether another process can go on behind a case that has spoiled this one.
    bool mayHandOver = false;
    /// Whether somebody is there whom scripts may ask.
    bool isInteractive = false;
};

/// Runs test cases of a suite one after the other in this process, each in its own folder as
/// working directory and with a fresh interpreter, and hands what happens to a report generator.
/// Script thread only; one run at a time.
class SuiteRun {
public:
    /// `report` is not owned and outlives the run.
    SuiteRun(const Suite& suite, const SuiteRunOptions& options, ReportGenerator* report);
    ~SuiteRun();

    /// What has to be right before anything runs: the display for applications, what records it,
    /// the suite's map of object names, and the tags of scenarios. Call it before run().
    Outcome<> prepare();

    /// Runs the cases, until all have run, as many have failed as may, or a signal asked to end.
    /// Call one of the two, once. TAMRIX_PREFIX has to be set.
    void run(const QList<SuiteCase>& cases);
    /// The same for cases of which each is asked for when the one before has ended; null ends.
    using NextCase = std::function<const SuiteCase*()>;
    void run(const NextCase& nextCase);

    /// Adds an error to the running case, with the script's stack and a picture of the desktop. For
    /// a copy of the process that ends behind it (LastLook): nothing is as it should be after that.
    void tellWhereScriptStands();

    /// Whether a case that ran had a failed verdict or a script error.
    bool hasFailed() const { return m_failedCases > 0; }
    /// The signal that ended the run early, 0 when none did.
    int interruptedBy() const { return m_interruptedBy; }
    /// Whether a case has left this process so that no other one can run in it.
    static bool isProcessSpoiled();
    /// Whether another process is to go on with the cases that did not start: the suite has not
    /// ended in the reports.
    bool isHandedOver() const { return m_isHandedOver; }
    /// The number of cases that did not start because the run ended before them.
    int skippedCases() const { return m_skippedCases; }

private:
    void runCase(const SuiteCase& testCase);
    void runScript(const SuiteCase& testCase);
    /// Hands the debugger of the language to whoever drives it.
    void startDebugging(const SuiteCase& testCase);
    bool readScript(const QString& path, QString* text);
    bool caseHasFailed() const;
    bool isDebugged() const { return m_options.debugger != DebuggerDialogue::None; }
    /// Loads the suite's map of object names, so that each case starts with the same one.
    Outcome<> loadObjectMap();
    /// A picture of the desktop for a result; null when the application gives none.
    QImage grabDesktop();
    void keepFailureMoment(const QString& folder);
    /// What a trace sees of the current application.
    TraceView traceView();
    void endApplications();
    /// Gives the applications of the next case a home of their own.
    void renewHome();
    void runCases(const NextCase& nextCase);
    void endSuite();
    bool mayGoOn() const;
    /// No further case can run in this process.
    bool isSpoiled() const;
    /// Tells the results where the suite runs.
    void noteEnvironment();
    /// Attaches what programs wrote to the report.
    void attachOutput(const std::vector<std::shared_ptr<StartedProgram>>& programs);

    Suite m_suite;
    SuiteRunOptions m_options;
    Runner m_runner;
    /// Null when none is kept.
    std::unique_ptr<CaseTrace> m_trace;
    /// No report tells the passwords that the run was given.
    SecretsFilter m_filter;
    TestResult m_result;
    StandardStreams m_standardStreams;
    PrivateHome m_home;
    CaseVideo m_video;
    FailureMoment m_failureMoment;
    /// The last picture of the desktop, until the failure that it belongs to is told.
    Screenshot m_desktop;
    int m_failedCases = 0;
    QMap<QString, QString> m_passwords;
    int m_interruptedBy = 0;
    int m_skippedCases = 0;
    bool m_isHandedOver = false;
};

}  // namespace Tamrix
