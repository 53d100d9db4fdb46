#include "runner/commands/commands.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <memory>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/consolereport.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportfactory.h"
#include "runner/applications/attachable.h"
#include "runner/commands/comparecommand.h"
#include "runner/commands/datacommand.h"
#include "runner/commands/findimage.h"
#include "runner/commands/inspect.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/supervision.h"
#include "runner/processes/terminal.h"
#include "runner/suites/lostrun.h"
#include "runner/suites/suite.h"
#include "runner/suites/suiterun.h"

namespace Tamrix {

namespace {

/// Text for standard output; not being able to write it is a failure.
int show(const QString& text) {
    return writeBytes(stdout, text.toLocal8Bit())
               ? ExitSuccess
               : failWith(QStringLiteral("standard output can't be written"));
}

bool wantsColour() {
    return ::isatty(STDOUT_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
}

std::unique_ptr<ReportGenerator> createConsole(const CommandLine& line,
                                               std::unique_ptr<QIODevice> output) {
    const auto verbosity = line.quiet     ? ConsoleReport::Verbosity::Quiet
                           : line.verbose ? ConsoleReport::Verbosity::Verbose
                                          : ConsoleReport::Verbosity::Normal;
    return std::make_unique<ConsoleReport>(std::move(output), verbosity, wantsColour());
}

/// Makes the reports, of which each tells when it fails. Returns an error text.
QString openReports(const QStringList& descriptions, CompositeReport& reports) {
    reports.setErrorHandler([](const QString& error) { tell(error); });
    for (const QString& description : descriptions) {
        QString error;
        std::unique_ptr<ReportGenerator> report = createReportGenerator(description, &error);
        if (!report)
            return error;
        reports.append(std::move(report));
    }
    return {};
}

/// Ends the reports; false when one of them could not be written.
bool finishReports(CompositeReport& reports) {
    reports.finish();
    return reports.errorText().isEmpty();
}

int runCases(const CommandLine& line, const Suite& suite, const QList<SuiteCase>& cases,
             const RunJournal& journal) {
    CompositeReport reports;
    QString error = openReports(line.reports, reports);
    if (!error.isEmpty())
        return failWith(error);
    reports.append(journal.createWriter());
    // Behind the others: what a person has seen is in the journal, even if the process is killed.
    auto output = std::make_unique<QFile>();
    output->open(stdout, QIODevice::WriteOnly);
    reports.append(createConsole(line, std::move(output)));

    SuiteRunOptions options;
    options.failFast = line.failFast;
    options.recordsActions = line.recordsActions;
    options.resultDirectory = line.resultDirectory;
    options.scriptArguments = line.scriptArguments;
    options.display = line.display;
    SuiteRun run(suite, options, &reports);
    error = run.prepare();
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

int runSuite(const CommandLine& line) {
    QString error;
    const Suite suite = loadSuite(line.suite, &error);
    if (!error.isEmpty())
        return failWith(error);
    const QList<SuiteCase> cases = selectCases(suite, line.cases, &error);
    if (!error.isEmpty())
        return failWith(error);
    if (!line.resultDirectory.isEmpty() && !QDir().mkpath(line.resultDirectory))
        return failWith(QStringLiteral("the folder '%1' can't be made").arg(line.resultDirectory));

    const RunJournal journal(line.reports);
    const std::optional<Supervision::End> end = Supervision::begin();
    if (!end) {
        const int exitCode = runCases(line, suite, cases, journal);
        Supervision::markOrderly();
        return exitCode;
    }
    if (end->isOrderly)
        return end->exitCode;
    finishLostRun(journal, {end->text, line.reports, cases.size(),
                            [&](auto output) { return createConsole(line, std::move(output)); }});
    return ExitUsage;
}

int keepProgram(const CommandLine& line) {
    QString error;
    const int exitCode = keepAttachable({line.applicationName, line.program}, &error);
    return error.isEmpty() ? exitCode : failWith(error);
}

int listCases(const CommandLine& line) {
    QString error;
    const Suite suite = loadSuite(line.suite, &error);
    if (!error.isEmpty())
        return failWith(error);
    QString text;
    for (const SuiteCase& each : suite.cases)
        text += displayName(each) + QLatin1Char('\n');
    return show(text);
}

/// Whether a report would write over the journal that it is made from.
bool overwritesJournal(const QString& description, const QString& journal) {
    ReportDescription report;
    parseReportDescription(description, &report);
    return !report.path.isEmpty() && isSameFile(report.path, journal);
}

int makeReports(const CommandLine& line) {
    if (!QFileInfo(line.journal).isFile())
        return failWith(QStringLiteral("there is no journal '%1'").arg(line.journal));
    for (const QString& report : line.reports) {
        if (overwritesJournal(report, line.journal))
            return failWith(QStringLiteral("'%1' would write over the journal").arg(report));
    }
    // Without any report first: a faulty journal must not leave faulty reports behind.
    CompositeReport nothing;
    JournalReader check(&nothing);
    if (!check.replay(line.journal))
        return failWith(check.errorText());

    CompositeReport reports;
    const QString error = openReports(line.reports, reports);
    if (!error.isEmpty())
        return failWith(error);
    JournalReader reader(&reports);
    if (!reader.replay(line.journal))
        return failWith(reader.errorText());
    if (reader.isCut()) {
        tell(QStringLiteral("'%1' ends inside an entry: its run was killed while writing it")
                 .arg(line.journal));
    }
    return finishReports(reports) ? ExitSuccess : ExitUsage;
}

}  // namespace

int failWith(const QString& text) {
    tell(text);
    return ExitUsage;
}

int execute(const CommandLine& commandLine) {
    if (!commandLine.error.isEmpty())
        return failWith(commandLine.error);
    switch (commandLine.command) {
        case CommandLine::Command::Run:
            return runSuite(commandLine);
        case CommandLine::Command::List:
            return listCases(commandLine);
        case CommandLine::Command::Report:
            return makeReports(commandLine);
        case CommandLine::Command::Inspect:
            return inspectApplication(commandLine);
        case CommandLine::Command::Compare:
            return compareFiles(commandLine);
        case CommandLine::Command::Attachable:
            return keepProgram(commandLine);
        case CommandLine::Command::FindImage:
            return findImage(commandLine);
        case CommandLine::Command::Data:
            return printTestData(commandLine);
        case CommandLine::Command::Show:
            break;
    }
    return show(commandLine.text);
}

}  // namespace Tamrix
