#pragma once

#include <QString>
#include <map>
#include <vector>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

namespace Tamrix {

class ReportFiles;

/// A page for people: the run's cases with a filter, and for each failure the lines of the script,
/// the calls, the screenshot and what the application wrote. It is a folder with index.html and
/// copies of the attachments, which needs neither a server nor the network and can be moved.
///
/// Scripts and attachments are read by finish(); of a file that is missing then, the page says so.
/// Keeps the run in memory until finish().
class TAMRIX_EXPORT HtmlReport : public ReportGenerator {
public:
    /// A relative path counts from the current working directory. The folder is created when it is
    /// missing.
    explicit HtmlReport(const QString& folder);
    ~HtmlReport() override;

    void add(const ReportEntry& entry) override;
    /// Writes the attachments first and then the page, each beside its place and moved there, so
    /// that an earlier report in the folder stays right until the new one is whole. Attachments of
    /// the earlier one are removed then; other files in the folder are left alone.
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    void addFact(const EnvironmentFact& fact);
    bool writePage(ReportFiles& files);

    QString m_folder;
    QString m_page;
    QString m_error;
    RunTally m_tally;
    /// By CaseTally::id.
    std::map<int, std::vector<ReportEntry>> m_entries;
    /// Facts about the run, each once.
    std::vector<EnvironmentFact> m_environment;
};

}  // namespace Tamrix
