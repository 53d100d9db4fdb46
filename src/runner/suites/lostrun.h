#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

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

/// Completes the journal, makes all reports of it, and goes on with the console report where the
/// run stopped. Tells on standard error what happened.
void finishLostRun(const RunJournal& journal, const LostRun& run);

}  // namespace Tamrix
