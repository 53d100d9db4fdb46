#include "runner/commands/reports.h"

#include "platform/testresult/compositereport.h"
#include "platform/testresult/reportfactory.h"
#include "runner/commands/option.h"
#include "runner/commands/samefile.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

Outcome<> addReports(const QStringList& descriptions, QStringList* reports) {
    for (const QString& report : descriptions) {
        const Outcome<ReportDescription> description = parseReportDescription(report);
        if (!description)
            return wrongUsage(description.error().text);
        for (const QString& other : qAsConst(*reports)) {
            const Outcome<ReportDescription> earlier = parseReportDescription(other);
            if (earlier && isSameFile(description->path, earlier->path)) {
                return wrongUsage(QStringLiteral("the reports '%1' and '%2' have the same path")
                                      .arg(other, report));
            }
        }
        reports->append(report);
    }
    return {};
}

Outcome<> openReports(const QStringList& descriptions, CompositeReport& reports) {
    reports.setErrorHandler([](const QString& error) { tell(error); });
    for (const QString& description : descriptions) {
        auto report = createReportGenerator(description);
        if (!report)
            return fail(report.error());
        reports.append(*std::move(report));
    }
    return {};
}

bool finishReports(CompositeReport& reports) {
    reports.finish();
    return reports.errorText().isEmpty();
}

}  // namespace Tamrix
