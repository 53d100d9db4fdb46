#include "runner/commands/workerrun.h"

#include <QFileInfo>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/consolereport.h"
#include "platform/testresult/reportfactory.h"
#include "runner/applications/agentserver.h"
#include "runner/commands/caserun.h"
#include "runner/commands/command.h"
#include "runner/commands/reports.h"
#include "runner/commands/runreports.h"
#include "runner/farm/farmrun.h"
#include "runner/farm/opencases.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/privatefolder.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

/// Where workers keep the journals of their cases: beside the run's own, where a killed run can be
/// reported from, or in a private folder when there is none.
class Spool {
public:
    ~Spool() {
        if (!m_journal.isEmpty())
            removeOpenCases(m_journal);
    }

    Outcome<QString> open(const QStringList& reports) {
        for (const QString& report : reports) {
            const Outcome<ReportDescription> description = parseReportDescription(report);
            if (!description || description->format != QLatin1String("json"))
                continue;
            const QFileInfo file(description->path);
            if (file.exists() && !file.isFile())
                continue;
            m_journal = file.absoluteFilePath();
            if (const Outcome<> made = renewOpenCases(m_journal); !made)
                return fail(made.error());
            return openCasesFolder(m_journal);
        }
        if (const Outcome<> made = m_folder.make(randomToken()); !made)
            return fail(made.error());
        return m_folder.path();
    }

private:
    QString m_journal;
    PrivateFolder m_folder;
};

int exitCode(const CaseRunSettings& settings, const FarmRun& run, bool isReported) {
    if (run.interruptedBy())
        return Interrupt::exitCode(run.interruptedBy());
    if (!isReported)
        return ExitUsage;
    return run.failedCases() > 0 || (settings.farm.failsOnFlaky && run.flakyCases() > 0)
               ? ExitFailure
               : ExitSuccess;
}

}  // namespace

int runWithWorkers(const CaseRunSettings& settings, const Suite& suite, const CaseChoice& choice,
                   const CaseTimes& history) {
    CompositeReport reports;
    if (const Outcome<> opened = openReports(settings.reports, reports); !opened)
        return failWith(opened.error().text);
    reports.append(createHistory(settings, suite, history));
    std::unique_ptr<ReportGenerator> consoleReport = createConsole(settings);
    auto* const console = dynamic_cast<ConsoleReport*>(consoleReport.get());
    reports.append(std::move(consoleReport));
    Spool spool;
    const Outcome<QString> folder = spool.open(settings.reports);
    if (!folder)
        return failWith(folder.error().text);

    WorkerSettings worker{&suite, &choice.cases, suiteRunOptions(settings), *folder};
    worker.options.facts = choice.facts;
    FarmOptions options;
    options.jobs = std::max(1, settings.farm.jobs);
    options.rules = {settings.farm.retries, settings.maxFailures};
    options.caseTimeout = settings.farm.caseTimeout;
    FarmRun run(worker, options, &reports);
    if (console) {
        run.setProgressHandler([console](const FarmProgress& progress) {
            console->showStatus(progressText(progress));
        });
    }
    const Outcome<> ran = run.run(choice.times);
    const bool isReported = finishReports(reports);
    if (!ran)
        return failWith(ran.error().text);
    if (run.skippedCases() > 0) {
        tell(QStringLiteral("%1: %2 test case(s) did not run")
                 .arg(run.interruptedBy() ? QStringLiteral("interrupted")
                                          : endedByFailures(settings),
                      QString::number(run.skippedCases())));
    }
    return exitCode(settings, run, isReported);
}

}  // namespace Tamrix
