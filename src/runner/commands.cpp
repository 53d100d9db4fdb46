#include "runner/commands.h"

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
#include "runner/interrupt.h"
#include "runner/suite.h"
#include "runner/suiterun.h"

namespace Tamrix {

namespace {

void writeText(FILE* stream, const QString& text) {
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    std::fflush(stream);
}

void tell(const QString& text) {
    writeText(stderr, QStringLiteral("tamrixrunner: %1\n").arg(text));
}

int fail(const QString& text) {
    tell(text);
    return ExitUsage;
}

/// Text for standard output; not being able to write it is a failure.
int show(const QString& text) {
    writeText(stdout, text);
    return std::ferror(stdout) ? fail(QStringLiteral("standard output can't be written"))
                               : ExitSuccess;
}

bool wantsColour() {
    return ::isatty(STDOUT_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
}

std::unique_ptr<ReportGenerator> createConsole(const CommandLine& line) {
    auto output = std::make_unique<QFile>();
    output->open(stdout, QIODevice::WriteOnly);
    const auto verbosity = line.quiet     ? ConsoleReport::Verbosity::Quiet
                           : line.verbose ? ConsoleReport::Verbosity::Verbose
                                          : ConsoleReport::Verbosity::Normal;
    return std::make_unique<ConsoleReport>(std::move(output), verbosity, wantsColour());
}

/// Makes the reports. Returns an error text.
QString openReports(const QStringList& descriptions, CompositeReport& reports) {
    for (const QString& description : descriptions) {
        QString error;
        std::unique_ptr<ReportGenerator> report = createReportGenerator(description, &error);
        if (!report)
            return error;
        reports.append(std::move(report));
    }
    return {};
}

/// Ends the reports; false after telling which of them could not be written.
bool finishReports(CompositeReport& reports) {
    reports.finish();
    const QStringList errors = reports.errorText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& error : errors)
        tell(error);
    return errors.isEmpty();
}

int runSuite(const CommandLine& line) {
    QString error;
    const Suite suite = loadSuite(line.suite, &error);
    if (!error.isEmpty())
        return fail(error);
    const QList<SuiteCase> cases = selectCases(suite, line.cases, &error);
    if (!error.isEmpty())
        return fail(error);
    if (!line.resultDirectory.isEmpty() && !QDir().mkpath(line.resultDirectory))
        return fail(QStringLiteral("the folder '%1' can't be made").arg(line.resultDirectory));
    CompositeReport reports;
    error = openReports(line.reports, reports);
    if (!error.isEmpty())
        return fail(error);
    // Behind the others: what a person has seen is in the journal, even if the process is killed.
    reports.append(createConsole(line));

    SuiteRunOptions options;
    options.failFast = line.failFast;
    options.resultDirectory = line.resultDirectory;
    options.scriptArguments = line.scriptArguments;
    SuiteRun run(suite, options, &reports);
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

int listCases(const CommandLine& line) {
    QString error;
    const Suite suite = loadSuite(line.suite, &error);
    if (!error.isEmpty())
        return fail(error);
    QString text;
    for (const SuiteCase& each : suite.cases)
        text += each.name + QLatin1Char('\n');
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
        return fail(QStringLiteral("there is no journal '%1'").arg(line.journal));
    for (const QString& report : line.reports) {
        if (overwritesJournal(report, line.journal))
            return fail(QStringLiteral("'%1' would write over the journal").arg(report));
    }
    // Without any report first: a faulty journal must not leave faulty reports behind.
    CompositeReport nothing;
    JournalReader check(&nothing);
    if (!check.replay(line.journal))
        return fail(check.errorText());

    CompositeReport reports;
    const QString error = openReports(line.reports, reports);
    if (!error.isEmpty())
        return fail(error);
    JournalReader reader(&reports);
    if (!reader.replay(line.journal))
        return fail(reader.errorText());
    if (reader.isCut()) {
        tell(QStringLiteral("'%1' ends inside an entry: its run was killed while writing it")
                 .arg(line.journal));
    }
    return finishReports(reports) ? ExitSuccess : ExitUsage;
}

}  // namespace

int execute(const CommandLine& commandLine) {
    if (!commandLine.error.isEmpty())
        return fail(commandLine.error);
    switch (commandLine.command) {
        case CommandLine::Command::Run:
            return runSuite(commandLine);
        case CommandLine::Command::List:
            return listCases(commandLine);
        case CommandLine::Command::Report:
            return makeReports(commandLine);
        case CommandLine::Command::Show:
            break;
    }
    return show(commandLine.text);
}

}  // namespace Tamrix
