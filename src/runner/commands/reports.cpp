#include "runner/commands/reports.h"

#include <memory>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/reportfactory.h"
#include "runner/commands/option.h"
#include "runner/commands/samefile.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

Outcome<> addReports(const QStringList& descriptions, QStringList* reports) {
    for (const QString& report : descriptions) {
        ReportDescription description;
        const QString problem = parseReportDescription(report, &description);
        if (!problem.isEmpty())
            return wrongUsage(problem);
        for (const QString& other : qAsConst(*reports)) {
            ReportDescription otherDescription;
            parseReportDescription(other, &otherDescription);
            if (isSameFile(description.path, otherDescription.path)) {
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
        QString error;
        std::unique_ptr<ReportGenerator> report = createReportGenerator(description, &error);
        if (!report)
            return fail(FailureKind::Failed, error);
        reports.append(std::move(report));
    }
    return {};
}

bool finishReports(CompositeReport& reports) {
    reports.finish();
    return reports.errorText().isEmpty();
}

}  // namespace Tamrix
