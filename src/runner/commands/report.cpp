// "tamrixrunner report": reports from the journal of a run.

#include <QFileInfo>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportfactory.h"
#include "runner/commands/command.h"
#include "runner/commands/reports.h"
#include "runner/commands/samefile.h"
#include "runner/farm/opencases.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

struct ReportSettings {
    QString journal;
    QStringList reports;
};

Outcome<> readArguments(const CommandArguments& arguments, ReportSettings& settings) {
    settings.journal = arguments.own.constFirst();
    const QStringList wanted = std::exchange(settings.reports, {});
    if (wanted.isEmpty())
        return wrongUsage(QStringLiteral("report needs at least one --to FORMAT:PATH"));
    return addReports(wanted, &settings.reports);
}

/// Whether a report would write over the journal that it is made from.
bool overwritesJournal(const QString& description, const QString& journal) {
    const Outcome<ReportDescription> report = parseReportDescription(description);
    return report && !report->path.isEmpty() && isSameFile(report->path, journal);
}

int makeReports(const ReportSettings& settings) {
    if (!QFileInfo(settings.journal).isFile())
        return failWith(QStringLiteral("there is no journal '%1'").arg(settings.journal));
    for (const QString& report : settings.reports) {
        if (overwritesJournal(report, settings.journal))
            return failWith(QStringLiteral("'%1' would write over the journal").arg(report));
    }
    // Without any report first: a faulty journal must not leave faulty reports behind.
    CompositeReport nothing;
    JournalReader check(&nothing);
    if (!check.replay(settings.journal))
        return failWith(check.errorText());

    CompositeReport reports;
    if (const Outcome<> opened = openReports(settings.reports, reports); !opened)
        return failWith(opened.error().text);
    RunEnd end(&reports);
    JournalReader reader(&end);
    if (!reader.replay(settings.journal))
        return failWith(reader.errorText());
    end.addOpenCases(settings.journal);
    if (reader.isCut()) {
        tell(QStringLiteral("'%1' ends inside an entry: its run was killed while writing it")
                 .arg(settings.journal));
    }
    return finishReports(reports) ? ExitSuccess : ExitUsage;
}

}  // namespace

Command reportCommand() {
    return makeCommand<ReportSettings>(
        {{"report", "JOURNAL --to FORMAT:PATH",
          "Makes reports from the journal of a run, also of one that was killed.", 1, 1},
         {{"to", reportValueName,
           "The report: html (a folder), json (the journal), junit (JUnit XML), tap, allure (a "
           "folder), cucumber-messages (NDJSON) or console; may be given several times.",
           nullptr, allTo(&ReportSettings::reports)}},
         {},
         readArguments,
         makeReports});
}

}  // namespace Tamrix
