#pragma once

#include <QDateTime>
#include <QString>
#include <optional>
#include <vector>

#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

namespace Tamrix {

/// Takes the journals of single cases and puts them, one after the other, into the report of the
/// whole run. What frames them is left out, and facts that the run has told already.
class CaseMerge {
public:
    /// What is known of the case beside its journal.
    struct Case {
        QString name = {};
        QString script = {};
        int attempt = 1;
        /// What the run says about it at its end, empty for nothing: it took too long, its process
        /// has ended.
        QString error = {};
        QString detail = {};
        /// Results from then on tell where the script stood, if there is an error.
        QDateTime errorTime = {};
        /// A case without an end was interrupted by the user.
        bool isInterrupted = false;
    };

    /// How the case came out.
    struct Result {
        CaseOutcome outcome = CaseOutcome::Incomplete;
        double seconds = 0;
        /// Why its journal could not be read to the end; empty when it could.
        QString problem;
    };

    /// `report` is not owned and outlives this.
    explicit CaseMerge(ReportGenerator* report) : m_report(report) {}

    /// Merges the journal at `path`. Without one that has the case's start, there is the case all
    /// the same.
    Result merge(const QString& path, const Case& testCase);

private:
    ReportGenerator* m_report;
    std::vector<EnvironmentFact> m_facts;
};

}  // namespace Tamrix
