// "tamrixrunner merge": one report of many shards.

#include <QDir>
#include <QFileInfo>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/reportfactory.h"
#include "platform/testresult/runsummary.h"
#include "runner/commands/command.h"
#include "runner/commands/reports.h"
#include "runner/commands/samefile.h"
#include "runner/farm/bundles.h"
#include "runner/farm/casetimes.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

struct MergeSettings {
    QStringList bundles;
    QStringList reports;
    /// A folder; empty for none.
    QString history;
};

/// Adds up what the other reports get.
class Verdict : public ReportGenerator {
public:
    explicit Verdict(RunTally* tally) : m_tally(tally) {}
    void add(const ReportEntry& entry) override { m_tally->add(entry); }

private:
    RunTally* m_tally;
};

Outcome<> readArguments(const CommandArguments& arguments, MergeSettings& settings) {
    settings.bundles = arguments.own;
    const QStringList wanted = std::exchange(settings.reports, {});
    if (wanted.isEmpty())
        return wrongUsage(QStringLiteral("merge needs at least one --to FORMAT:PATH"));
    return addReports(wanted, &settings.reports);
}

/// The report that would write over a bundle; empty when none would.
QString overwriting(const MergeSettings& settings) {
    for (const QString& report : settings.reports) {
        const Outcome<ReportDescription> description = parseReportDescription(report);
        for (const QString& bundle : settings.bundles) {
            const QString journal =
                QFileInfo(bundle).isDir() ? bundle + QLatin1String("/journal.jsonl") : bundle;
            if (description && !description->path.isEmpty() &&
                isSameFile(description->path, journal))
                return report;
        }
    }
    return {};
}

int mergeBundles(const MergeSettings& settings) {
    if (const QString report = overwriting(settings); !report.isEmpty())
        return failWith(QStringLiteral("'%1' would write over a journal").arg(report));
    CompositeReport reports;
    BundleMerge merge(&reports);
    for (const QString& bundle : settings.bundles)
        merge.add(bundle);
    if (merge.isEmpty()) {
        for (const QString& problem : merge.problems())
            tell(problem);
        return failWith(QStringLiteral("there is nothing to merge"));
    }
    if (const Outcome<> opened = openReports(settings.reports, reports); !opened)
        return failWith(opened.error().text);
    if (!settings.history.isEmpty()) {
        CaseTimes earlier(merge.suite());
        for (const QString& problem : earlier.readFolder(settings.history))
            tell(problem);
        reports.append(std::make_unique<HistoryReport>(settings.history, merge.suite(), earlier));
    }
    RunTally tally;
    reports.append(std::make_unique<Verdict>(&tally));
    merge.merge();
    for (const QString& problem : merge.problems())
        tell(problem);
    if (!finishReports(reports))
        return ExitUsage;
    return isGood(tally) ? ExitSuccess : ExitFailure;
}

}  // namespace

Command mergeCommand() {
    return makeCommand<MergeSettings>(
        {{"merge", "BUNDLE... --to FORMAT:PATH",
          "Makes one report of the shards of a suite; each is the folder of results that a run has "
          "left, or its journal.",
          1, CommandSyntax::anyNumber},
         {{"to", reportValueName,
           "The report, as for the command report; may be given several times.", nullptr,
           allTo(&MergeSettings::reports)},
          {"history", "DIR", "Keeps in this folder how long each case took.", nullptr,
           textTo(&MergeSettings::history)}},
         {},
         readArguments,
         mergeBundles});
}

}  // namespace Tamrix
