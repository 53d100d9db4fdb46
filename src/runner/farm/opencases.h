#pragma once

#include <QString>

#include "base/outcome.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

// Cases that are running have journals of their own, beside that of the run, which takes them in
// when they end. A run that was killed leaves them there.

/// Where the journals of running cases lie.
QString openCasesFolder(const QString& journal);
/// Makes the folder, without what an earlier run has left in it.
Outcome<> renewOpenCases(const QString& journal);
/// Removes the folder: a new journal has nothing to do with it.
void removeOpenCases(const QString& journal);

/// Hands a run's entries on, and knows whether it came to its end.
class RunEnd : public ReportGenerator {
public:
    /// `report` is not owned.
    explicit RunEnd(ReportGenerator* report) : m_report(report) {}

    void add(const ReportEntry& entry) override;
    /// Adds the cases that were running when the run of this journal was killed; nothing for a run
    /// that came to its end. One that can't be read is left out.
    void addOpenCases(const QString& journal);

private:
    ReportGenerator* m_report;
    bool m_isOpen = false;
};

}  // namespace Tamrix
