#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "platform/testresult/journalreport.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// What a worker reports: a journal of one case at a time, which others take when the case has
/// ended, or its worker has. What happened outside of cases stands in front of the next one.
class CaseSpool : public ReportGenerator {
public:
    /// `file` is written for each case anew. `attempt` gives the number of the one that starts;
    /// `caseEnded` is called when its journal is whole, with an error text if it could not be
    /// written.
    CaseSpool(QString file, std::function<int()> attempt,
              std::function<void(const QString&)> caseEnded);

    void add(const ReportEntry& entry) override;

private:
    QString m_file;
    std::function<int()> m_attempt;
    std::function<void(const QString&)> m_caseEnded;
    std::vector<ReportEntry> m_outside;
    std::unique_ptr<JournalReport> m_journal;
};

}  // namespace Tamrix
