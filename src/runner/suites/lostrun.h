#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "base/outcome.h"
#include "platform/testresult/journalcompletion.h"
#include "platform/testresult/reportgenerator.h"

class QIODevice;

namespace Tamrix {

/// The journal from which the supervisor of a run can complete its reports: the one that the run
/// was asked for, or one without a name in the file system.
class RunJournal {
public:
    /// `reports` are the descriptions of the run's reports. Call it before the run's process
    /// begins.
    explicit RunJournal(const QStringList& reports);
    ~RunJournal();
    RunJournal(const RunJournal&) = delete;
    RunJournal& operator=(const RunJournal&) = delete;

    /// Empty when there is none to be had.
    QString path() const { return m_path; }
    /// What writes it during the run; null when one of the run's reports does.
    std::unique_ptr<ReportGenerator> createWriter() const;
    /// Whether this description is that of the journal itself.
    bool isReport(const QString& description) const { return description == m_description; }

private:
    QString m_path;
    QString m_description;
    int m_descriptor = -1;
};

/// What is to be told of a run whose process has ended before its time.
struct LostRun {
    /// For standard error.
    QString notice;
    /// Of the Error that the running case gets.
    QString message;
    QString detail;
    QStringList reports;
    int selectedCases = 0;
    /// Where the console report was written to.
    int consoleDescriptor = 1;
    /// Makes the console report on a device.
    std::function<std::unique_ptr<ReportGenerator>(std::unique_ptr<QIODevice>)> createConsole;
};

/// What the processes of a run that have ended before all was done have told, for the one that goes
/// on with the cases behind.
struct LostPart {
    /// Without the end of the suite.
    std::vector<ReportEntry> entries;
    /// So many of them the console report has shown.
    int shownEntries = 0;
    /// Of the cases that had started, the one in which a process ended included.
    int caseCount = 0;
    int failedCases = 0;
    /// Whether a process has ended in one of them.
    bool isLost = false;
};

/// Tells on standard error what happened, and completes the journal.
JournalCompletion completeLostRun(const RunJournal& journal, const LostRun& run);

/// Reads what the journal has of a run that stopped between two cases.
Outcome<LostPart> readPart(const RunJournal& journal);
/// The same of one that was completed.
Outcome<LostPart> readLostPart(const RunJournal& journal, const JournalCompletion& completion);

/// Makes all reports of the completed journal, and goes on with the console report where the run
/// stopped.
void finishLostRun(const RunJournal& journal, const JournalCompletion& completion,
                   const LostRun& run);

/// A console report that shows nothing of so many entries, since they have been shown; null when
/// the output can't be written.
std::unique_ptr<ReportGenerator> createContinuedConsole(const LostRun& run, int shownEntries);

/// Hands on what a process tells that goes on with a run: without the start of the suite and the
/// facts in front of the first case, which are there already.
class RestOfRun : public ReportGenerator {
public:
    /// `report` is not owned and outlives this.
    explicit RestOfRun(ReportGenerator* report) : m_report(report) {}

    void add(const ReportEntry& entry) override;
    QString errorText() const override { return m_report->errorText(); }
    QIODevice* openVideo(const QString& targetPath, QString* error) override {
        return m_report->openVideo(targetPath, error);
    }

private:
    ReportGenerator* m_report;
    bool m_hasCases = false;
};

}  // namespace Tamrix
