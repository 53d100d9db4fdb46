#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "platform/testresult/consolereport.h"
#include "runner/commands/command.h"
#include "runner/debugging/frontends.h"
#include "runner/suites/casevideo.h"

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
    /// "inherit", "auto" or ":N".
    QString display;
    bool failFast = false;
    VideoMode video = VideoMode::Off;
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
};

/// The options that all such commands have.
std::vector<Option<CaseRunSettings>> caseRunOptions();
/// Pairs of them of which one may be given.
std::vector<std::pair<const char*, const char*>> exclusiveCaseRunOptions();

/// Takes suite, cases and script arguments, and completes the reports.
Outcome<> readCaseRunArguments(const CommandArguments& arguments, CaseRunSettings& settings);

/// Runs the cases in a process of their own and returns the exit code.
int runCases(const CaseRunSettings& settings);

}  // namespace Tamrix
