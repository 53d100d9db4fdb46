#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "platform/testresult/consolereport.h"
#include "runner/commands/command.h"
#include "runner/commands/farmoptions.h"
#include "runner/debugging/frontends.h"
#include "runner/suites/casevideo.h"
#include "runner/suites/suiterun.h"

namespace Tamrix {

/// What a command that runs test cases is asked for.
struct CaseRunSettings {
    QString suite;
    /// All for none.
    QStringList cases;
    /// Of known formats; no two have the same path. With a folder for results, the journal in it
    /// stands first.
    QStringList reports;
    /// Absolute, empty when none was given.
    QString resultDirectory;
    /// "inherit", "auto" or ":N"; empty for what fits the jobs.
    QString display;
    /// So many failed cases end the run; 0 for none.
    int maxFailures = 0;
    VideoMode video = VideoMode::Off;
    TraceMode trace = TraceMode::Off;
    /// The port where the trace is shown while the run goes on; 0 for none.
    quint16 tracePort = 0;
    /// Whether verification points that differ are written anew.
    bool renewsVerificationPoints = false;
    bool isInteractive = false;
    bool recordsActions = true;
    bool hasConsole = true;
    ConsoleReport::Verbosity verbosity = ConsoleReport::Verbosity::Normal;
    /// Which scenarios of features run.
    QStringList tagFilters;
    std::vector<unsigned> scenarios;
    QStringList scriptArguments;
    DebuggerDialogue debugger = DebuggerDialogue::None;
    FarmSettings farm;
};

/// The options of "run", which it hands on to whatever runs parts of it.
std::vector<Option<CaseRunSettings>> runOptions();
std::vector<std::pair<const char*, const char*>> exclusiveRunOptions();

/// The options that all such commands have.
std::vector<Option<CaseRunSettings>> caseRunOptions();
/// Pairs of them of which one may be given.
std::vector<std::pair<const char*, const char*>> exclusiveCaseRunOptions();

/// Takes suite, cases and script arguments, and completes the reports.
Outcome<> readCaseRunArguments(const CommandArguments& arguments, CaseRunSettings& settings);

/// Where the trace of the run goes; empty when none is kept.
QString traceFolder(const CaseRunSettings& settings);

/// What the run itself is asked to do; for one of several workers as well.
SuiteRunOptions suiteRunOptions(const CaseRunSettings& settings);

/// Runs the cases in a process of their own, or several, and returns the exit code.
int runCases(const CaseRunSettings& settings);

}  // namespace Tamrix
