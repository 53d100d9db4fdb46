#include "runner/commands/caserun.h"

#include <unistd.h>

#include <QDir>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/reportfactory.h"
#include "runner/commands/casechoice.h"
#include "runner/commands/displayoption.h"
#include "runner/commands/livetrace.h"
#include "runner/commands/reports.h"
#include "runner/commands/runreports.h"
#include "runner/commands/workerrun.h"
#include "runner/farm/opencases.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/supervision.h"
#include "runner/processes/terminal.h"
#include "runner/suites/lostrun.h"
#include "runner/suites/suite.h"
#include "runner/suites/suiterun.h"
#include "runner/trace/tracefolder.h"

namespace Tamrix {

namespace {

using Verbosity = ConsoleReport::Verbosity;

Outcome<> readResultDirectory(const QStringList& values, CaseRunSettings& settings) {
    if (values.constLast().isEmpty())
        return wrongUsage(QStringLiteral("--result-dir needs a folder"));
    settings.resultDirectory =
        QDir::cleanPath(QDir::current().absoluteFilePath(values.constLast()));
    return {};
}

Outcome<> readScenarios(const QStringList& values, CaseRunSettings& settings) {
    for (const QString& value : values) {
        bool isNumber = false;
        settings.scenarios.push_back(value.toUInt(&isNumber));
        if (!isNumber)
            return wrongUsage(
                QStringLiteral("--scenario takes a number from 0 on, not '%1'").arg(value));
    }
    return {};
}

Outcome<> readVideoMode(const QStringList& values, CaseRunSettings& settings) {
    const QString& value = values.constLast();
    for (const auto& [name, mode] :
         {std::pair("on", VideoMode::On), std::pair("off", VideoMode::Off),
          std::pair("on-failure", VideoMode::OnFailure)}) {
        if (value == QLatin1String(name)) {
            settings.video = mode;
            return {};
        }
    }
    return wrongUsage(QStringLiteral("--video takes on, off or on-failure, not '%1'").arg(value));
}

Outcome<> readTraceMode(const QStringList& values, CaseRunSettings& settings) {
    const QString& value = values.constLast();
    for (const auto& [name, mode] :
         {std::pair("on", TraceMode::On), std::pair("off", TraceMode::Off),
          std::pair("failed", TraceMode::Failed)}) {
        if (value == QLatin1String(name)) {
            settings.trace = mode;
            return {};
        }
    }
    return wrongUsage(QStringLiteral("--trace takes on, off or failed, not '%1'").arg(value));
}

Outcome<> readTracePort(const QStringList& values, CaseRunSettings& settings) {
    settings.tracePort = values.constLast().toUShort();
    if (settings.tracePort == 0)
        return wrongUsage(QStringLiteral("--trace-live takes a port from 1 to 65535, not '%1'")
                              .arg(values.constLast()));
    if (settings.trace == TraceMode::Off)
        settings.trace = TraceMode::On;
    return {};
}

bool isStandardOutput(const QString& report) {
    const Outcome<ReportDescription> description = parseReportDescription(report);
    return description && description->isStandardOutput();
}

/// What continues the console report of a run whose process has ended.
void setConsole(const CaseRunSettings& settings, LostRun& run) {
    run.consoleDescriptor = consoleDescriptor(settings);
    run.createConsole = [&settings](auto output) {
        return createConsole(settings, std::move(output));
    };
}

/// The run itself, in the process of the cases, behind those that have run. The exit code; nothing
/// when another process has to go on.
std::optional<int> runHere(const CaseRunSettings& settings, const Suite& suite,
                           const CaseChoice& choice, const CaseTimes& history,
                           const RunJournal& journal, const LostPart& lost) {
    CompositeReport reports;
    if (const Outcome<> opened = openReports(settings.reports, reports); !opened)
        return failWith(opened.error().text);
    reports.append(journal.createWriter());
    reports.append(createHistory(settings, suite, history));
    // Behind the others: what a person has seen is in the journal, even if the process is killed.
    if (lost.caseCount == 0) {
        reports.append(createConsole(settings));
    } else {
        LostRun before;
        setConsole(settings, before);
        reports.append(createContinuedConsole(before, lost.shownEntries));
    }
    for (const ReportEntry& entry : lost.entries)
        reports.add(entry);
    RestOfRun rest(&reports);

    SuiteRunOptions options = suiteRunOptions(settings);
    options.maxFailures = settings.maxFailures > 0 ? settings.maxFailures - lost.failedCases : 0;
    options.facts = choice.facts;
    // A front end's debugger is connected to this process.
    options.mayHandOver = Supervision::isSupervised() && !journal.path().isEmpty() &&
                          settings.debugger == DebuggerDialogue::None;
    SuiteRun run(suite, options,
                 lost.caseCount == 0 ? static_cast<ReportGenerator*>(&reports) : &rest);
    if (const Outcome<> prepared = run.prepare(); !prepared) {
        if (lost.caseCount > 0)
            finishReports(reports);
        return failWith(prepared.error().text);
    }
    run.run(choice.cases.mid(lost.caseCount));
    if (run.isHandedOver())
        return std::nullopt;

    const bool reported = finishReports(reports);
    if (run.skippedCases() > 0) {
        tell(QStringLiteral("%1: %2 test case(s) did not run")
                 .arg(run.interruptedBy() ? QStringLiteral("interrupted")
                                          : endedByFailures(settings),
                      QString::number(run.skippedCases())));
    }
    if (run.interruptedBy())
        return Interrupt::exitCode(run.interruptedBy());
    if (!reported)
        return ExitUsage;
    return run.hasFailed() ? ExitFailure : ExitSuccess;
}

/// What the reports tell of a run whose process has ended before its time, as its user wanted or
/// not.
LostRun lostRun(const CaseRunSettings& settings, const Supervision::End& end, int selectedCases) {
    LostRun lost;
    if (end.isQuit) {
        lost.notice = QStringLiteral("the run was ended in the debugger");
        lost.message = QStringLiteral("The run was ended in the debugger");
        lost.detail = QStringLiteral(
            "The script stood still when its debugger was told to quit, or "
            "lost whoever drove it");
    } else {
        lost.notice =
            QStringLiteral("the process that ran the test cases ended before its time: %1")
                .arg(end.text);
        lost.message = QStringLiteral("The process of the run has ended");
        lost.detail = QStringLiteral(
                          "Something in this test case ended the process that ran it, as "
                          "os._exit() does: %1")
                          .arg(end.text);
    }
    lost.reports = settings.reports;
    lost.selectedCases = selectedCases;
    setConsole(settings, lost);
    return lost;
}

/// Whether another process goes on with the cases behind the one in which a process has ended.
bool goesOn(const CaseRunSettings& settings, const Supervision::End& end,
            const JournalCompletion& completion, const LostPart& lost, int selectedCases) {
    return !end.isQuit && settings.debugger == DebuggerDialogue::None &&
           completion.error.isEmpty() && completion.caseCount > lost.caseCount &&
           completion.caseCount < selectedCases && !Supervision::isAskedToEnd();
}

/// What the cases that have run come to.
int leastExitCode(const LostPart& part) {
    return part.isLost ? ExitUsage : part.failedCases > 0 ? ExitFailure : ExitSuccess;
}

bool haveAsManyFailedAsMay(const CaseRunSettings& settings, const LostPart& lost) {
    return settings.maxFailures > 0 && lost.failedCases >= settings.maxFailures;
}

/// Runs the cases in a process of their own. What a case does to it ends the case, not the run:
/// another process goes on with the next case.
int runSupervised(const CaseRunSettings& settings, const Suite& suite, const CaseChoice& choice,
                  const CaseTimes& history) {
    const RunJournal journal(settings.reports);
    LostPart lost;
    while (true) {
        const std::optional<Supervision::End> end = Supervision::begin();
        if (!end) {
            const std::optional<int> exitCode =
                runHere(settings, suite, choice, history, journal, lost);
            if (!exitCode) {
                Supervision::markHandedOver();
                std::fflush(nullptr);
                // What was there before this process is still needed.
                ::_exit(ExitSuccess);
            }
            Supervision::markOrderly();
            return *exitCode;
        }
        if (end->isHandedOver) {
            Outcome<LostPart> part = readPart(journal);
            if (part && part->caseCount > lost.caseCount) {
                part->isLost = lost.isLost;
                lost = std::move(*part);
                continue;
            }
        } else if (end->isOrderly) {
            return std::max(end->exitCode, leastExitCode(lost));
        }
        const LostRun how = lostRun(settings, *end, choice.cases.size());
        const JournalCompletion completion = completeLostRun(journal, how);
        if (goesOn(settings, *end, completion, lost, choice.cases.size())) {
            Outcome<LostPart> part = readLostPart(journal, completion);
            if (part && !haveAsManyFailedAsMay(settings, *part)) {
                lost = std::move(*part);
                continue;
            }
        }
        finishLostRun(journal, completion, how);
        return end->isQuit ? ExitSuccess : ExitUsage;
    }
}

/// The option for where applications appear, which `jobs` have a say in.
Option<CaseRunSettings> caseDisplayOption() {
    Option<CaseRunSettings> option = displayOption(&CaseRunSettings::display);
    option.help =
        "Where applications appear: auto (a display and session bus of its own; the default "
        "with --jobs), inherit (the default otherwise) or :N.";
    option.defaultValue = nullptr;
    return option;
}

}  // namespace

QString traceFolder(const CaseRunSettings& settings) {
    return settings.trace == TraceMode::Off ? QString()
                                            : settings.resultDirectory + QStringLiteral("/trace");
}

SuiteRunOptions suiteRunOptions(const CaseRunSettings& settings) {
    SuiteRunOptions options;
    options.hasPrivateHomes = settings.farm.hasPrivateHomes();
    options.recordsActions = settings.recordsActions;
    options.renewsVerificationPoints = settings.renewsVerificationPoints;
    options.resultDirectory = settings.resultDirectory;
    options.tagFilters = settings.tagFilters;
    options.scenarios = settings.scenarios;
    options.scriptArguments = settings.scriptArguments;
    options.video = settings.video;
    options.trace = settings.trace;
    options.traceFolder = traceFolder(settings);
    options.isInteractive = settings.isInteractive;
    options.display = settings.display;
    if (settings.display.isEmpty() && settings.farm.jobs > 0)
        options.display = QStringLiteral("auto");
    options.debugger = settings.debugger;
    return options;
}

std::vector<Option<CaseRunSettings>> caseRunOptions() {
    return {
        {"report", reportValueName,
         "Writes a report of the run: html (a folder), json (the journal), junit (JUnit XML), "
         "tap, allure (a folder), cucumber-messages (NDJSON) or console; may be given several "
         "times.",
         nullptr, allTo(&CaseRunSettings::reports)},
        {"result-dir", "DIR",
         "Keeps attachments and the run's journal (journal.jsonl) in this folder.", nullptr,
         readResultDirectory},
        caseDisplayOption(),
        {"tags", "TAGS",
         "Runs only scenarios of features with one of these tags, as in @a,~@b; given several "
         "times, each has to hold. 'untagged' means those without tags.",
         nullptr, allTo(&CaseRunSettings::tagFilters)},
        {"scenario", "N",
         "Runs only the scenario with this number, counted from 0 in its feature file; may be "
         "given several times.",
         nullptr, readScenarios},
        {"video", "on|off|on-failure",
         "Makes a video of each test case, or keeps those of failed ones only; needs ffmpeg.",
         nullptr, readVideoMode},
        {"trace", "on|off|failed",
         "Keeps for each test case, or for failed ones only, what the screen and the objects "
         "were behind each action: a page in the folder trace of --result-dir.",
         nullptr, readTraceMode},
        {"trace-live", "PORT", "Shows the trace at http://127.0.0.1:PORT/ while the run goes on.",
         nullptr, readTracePort},
        {"interactive", nullptr,
         "Lets scripts ask the person in front of the screen (testInteraction).", nullptr,
         setTo(&CaseRunSettings::isInteractive, true)},
        {"no-actions", nullptr, "Leaves clicks, typing, waits and the like out of the reports.",
         nullptr, setTo(&CaseRunSettings::recordsActions, false)},
        {"verbose", nullptr, "Shows every result and action, not only the failures.", nullptr,
         setTo(&CaseRunSettings::verbosity, Verbosity::Verbose)},
        {"quiet", nullptr, "Shows failures and the summary only.", nullptr,
         setTo(&CaseRunSettings::verbosity, Verbosity::Quiet)},
        {"no-console", nullptr, "Leaves out the console report.", nullptr,
         setTo(&CaseRunSettings::hasConsole, false)}};
}

std::vector<std::pair<const char*, const char*>> exclusiveCaseRunOptions() {
    return {{"verbose", "quiet"}, {"no-console", "verbose"}, {"no-console", "quiet"}};
}

Outcome<> readCaseRunArguments(const CommandArguments& arguments, CaseRunSettings& settings) {
    settings.suite = arguments.own.constFirst();
    settings.cases = arguments.own.mid(1);
    settings.scriptArguments = arguments.script;
    const QStringList wanted = std::exchange(settings.reports, {});
    for (const QString& report : wanted) {
        if (!isStandardOutput(report))
            continue;
        return wrongUsage((settings.debugger == DebuggerDialogue::Machine
                               ? QStringLiteral("standard output belongs to the debugger; '%1' "
                                                "can't be written there")
                               : QStringLiteral("the console report always goes to standard "
                                                "output; '%1' would write it twice"))
                              .arg(report));
    }
    if (settings.trace != TraceMode::Off && settings.resultDirectory.isEmpty())
        return wrongUsage(QStringLiteral("--trace needs --result-dir, where it goes"));
    if (settings.trace != TraceMode::Off && !settings.recordsActions)
        return wrongUsage(QStringLiteral("--trace needs the actions that --no-actions leaves out"));
    if (!settings.resultDirectory.isEmpty()) {
        settings.reports.append(
            QStringLiteral("json:%1/journal.jsonl").arg(settings.resultDirectory));
    }
    return addReports(wanted, &settings.reports);
}

int runCases(const CaseRunSettings& settings) {
    const Outcome<Suite> suite = loadSuite(settings.suite);
    if (!suite)
        return failWith(suite.error().text);
    CaseTimes history(suite->name);
    if (!settings.farm.history.isEmpty()) {
        for (const QString& problem : history.readFolder(settings.farm.history))
            tell(problem);
    }
    const Outcome<CaseChoice> choice = chooseCases(*suite, settings, history);
    if (!choice)
        return failWith(choice.error().text);
    const QString& directory = settings.resultDirectory;
    if (!directory.isEmpty() && !QDir().mkpath(directory))
        return failWith(QStringLiteral("the folder '%1' can't be made").arg(directory));

    for (const QString& report : settings.reports) {
        const Outcome<ReportDescription> description = parseReportDescription(report);
        if (description && description->format == QLatin1String("json"))
            removeOpenCases(description->path);
    }
    LiveTrace live;
    if (settings.trace != TraceMode::Off) {
        if (const Outcome<> made = createTraceFolder(traceFolder(settings)); !made)
            return failWith(made.error().text);
        if (const Outcome<> shown = live.show(traceFolder(settings), settings.tracePort); !shown)
            return failWith(shown.error().text);
    }
    if (settings.farm.needsWorkers())
        return runWithWorkers(settings, *suite, *choice, history);

    return runSupervised(settings, *suite, *choice, history);
}

}  // namespace Tamrix
