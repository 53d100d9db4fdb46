// "tamrixrunner run": the cases of a suite.

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <cstdio>
#include <memory>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/consolereport.h"
#include "platform/testresult/reportfactory.h"
#include "runner/commands/command.h"
#include "runner/commands/displayoption.h"
#include "runner/commands/reports.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/supervision.h"
#include "runner/processes/terminal.h"
#include "runner/suites/lostrun.h"
#include "runner/suites/suite.h"
#include "runner/suites/suiterun.h"

namespace Tamrix {

namespace {

using Verbosity = ConsoleReport::Verbosity;

struct RunSettings {
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
    bool recordsActions = true;
    Verbosity verbosity = Verbosity::Normal;
    QStringList scriptArguments;
};

Outcome<> readResultDirectory(const QStringList& values, RunSettings& settings) {
    if (values.constLast().isEmpty())
        return wrongUsage(QStringLiteral("--result-dir needs a folder"));
    settings.resultDirectory =
        QDir::cleanPath(QDir::current().absoluteFilePath(values.constLast()));
    return {};
}

bool isStandardOutput(const QString& report) {
    ReportDescription description;
    return parseReportDescription(report, &description).isEmpty() &&
           (description.path.isEmpty() || description.path == QLatin1String("-"));
}

Outcome<> readArguments(const CommandArguments& arguments, RunSettings& settings) {
    settings.suite = arguments.own.constFirst();
    settings.cases = arguments.own.mid(1);
    settings.scriptArguments = arguments.script;
    const QStringList wanted = std::exchange(settings.reports, {});
    for (const QString& report : wanted) {
        if (isStandardOutput(report)) {
            return wrongUsage(
                QStringLiteral("the console report always goes to standard output; '%1' would "
                               "write it twice")
                    .arg(report));
        }
    }
    if (!settings.resultDirectory.isEmpty()) {
        settings.reports.append(
            QStringLiteral("json:%1/journal.jsonl").arg(settings.resultDirectory));
    }
    return addReports(wanted, &settings.reports);
}

bool wantsColour() {
    return ::isatty(STDOUT_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
}

std::unique_ptr<ReportGenerator> createConsole(Verbosity verbosity,
                                               std::unique_ptr<QIODevice> output) {
    return std::make_unique<ConsoleReport>(std::move(output), verbosity, wantsColour());
}

int runCases(const RunSettings& settings, const Suite& suite, const QList<SuiteCase>& cases,
             const RunJournal& journal) {
    CompositeReport reports;
    if (const Outcome<> opened = openReports(settings.reports, reports); !opened)
        return failWith(opened.error().text);
    reports.append(journal.createWriter());
    // Behind the others: what a person has seen is in the journal, even if the process is killed.
    auto output = std::make_unique<QFile>();
    output->open(stdout, QIODevice::WriteOnly);
    reports.append(createConsole(settings.verbosity, std::move(output)));

    SuiteRunOptions options;
    options.failFast = settings.failFast;
    options.recordsActions = settings.recordsActions;
    options.resultDirectory = settings.resultDirectory;
    options.scriptArguments = settings.scriptArguments;
    options.display = settings.display;
    SuiteRun run(suite, options, &reports);
    const QString error = run.prepare();
    if (!error.isEmpty())
        return failWith(error);
    run.run(cases);

    const bool reported = finishReports(reports);
    if (run.skippedCases() > 0) {
        tell(QStringLiteral("%1: %2 test case(s) did not run")
                 .arg(run.interruptedBy() ? QStringLiteral("interrupted")
                                          : QStringLiteral("ended at the first failure"),
                      QString::number(run.skippedCases())));
    }
    if (run.interruptedBy())
        return Interrupt::exitCode(run.interruptedBy());
    if (!reported)
        return ExitUsage;
    return run.hasFailed() ? ExitFailure : ExitSuccess;
}

int runSuite(const RunSettings& settings) {
    QString error;
    const Suite suite = loadSuite(settings.suite, &error);
    if (!error.isEmpty())
        return failWith(error);
    const QList<SuiteCase> cases = selectCases(suite, settings.cases, &error);
    if (!error.isEmpty())
        return failWith(error);
    const QString& directory = settings.resultDirectory;
    if (!directory.isEmpty() && !QDir().mkpath(directory))
        return failWith(QStringLiteral("the folder '%1' can't be made").arg(directory));

    const RunJournal journal(settings.reports);
    const std::optional<Supervision::End> end = Supervision::begin();
    if (!end) {
        const int exitCode = runCases(settings, suite, cases, journal);
        Supervision::markOrderly();
        return exitCode;
    }
    if (end->isOrderly)
        return end->exitCode;
    finishLostRun(journal, {end->text, settings.reports, cases.size(), [&](auto output) {
                                return createConsole(settings.verbosity, std::move(output));
                            }});
    return ExitUsage;
}

}  // namespace

Command runCommand() {
    return makeCommand<RunSettings>(
        {{"run", "SUITE [CASE...]",
          "Runs the suite's test cases, or the named ones, in the suite's order.", 1,
          CommandSyntax::anyNumber, CommandTail::ScriptArguments},
         {{"report", reportValueName,
           "Writes a report of the run: html (a folder), json (the journal), junit (JUnit XML) or "
           "console; may be given several times.",
           nullptr, allTo(&RunSettings::reports)},
          {"result-dir", "DIR",
           "Keeps attachments and the run's journal (journal.jsonl) in this folder.", nullptr,
           readResultDirectory},
          displayOption(&RunSettings::display),
          {"fail-fast", nullptr, "Ends the run behind the first test case that fails.", nullptr,
           setTo(&RunSettings::failFast, true)},
          {"no-actions", nullptr, "Leaves clicks, typing, waits and the like out of the reports.",
           nullptr, setTo(&RunSettings::recordsActions, false)},
          {"verbose", nullptr, "Shows every result and action, not only the failures.", nullptr,
           setTo(&RunSettings::verbosity, Verbosity::Verbose)},
          {"quiet", nullptr, "Shows failures and the summary only.", nullptr,
           setTo(&RunSettings::verbosity, Verbosity::Quiet)}},
         {{"verbose", "quiet"}},
         readArguments,
         runSuite});
}

}  // namespace Tamrix
