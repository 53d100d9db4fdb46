#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <vector>

#include "platform/testresult/reportgenerator.h"
#include "runner/suites/suite.h"

namespace Tamrix {

/// How long the cases of a suite took, taken from journals.
class CaseTimes : public ReportGenerator {
public:
    /// When a case ran last to its own end.
    struct Span {
        QString script;
        QDateTime start;
        QDateTime end;

        double seconds() const;
    };

    /// Of the suite with this name; journals may hold others.
    explicit CaseTimes(const QString& suite) : m_suite(suite) {}

    /// Of two runs of a case the later one counts, in whatever order they come.
    void add(const ReportEntry& entry) override;

    /// Reads every journal (*.jsonl) in a folder, which need not be there. Returns what could not
    /// be read, ready for a person; the rest is taken.
    QStringList readFolder(const QString& folder);

    const QMap<QString, Span>& spans() const { return m_spans; }
    /// Seconds for each of the cases: cases that never ran are as long as an average one, -1 when
    /// no time is known at all.
    std::vector<double> expected(const QList<SuiteCase>& cases) const;

private:
    QString m_suite;
    bool m_isSuite = false;
    QString m_case;
    Span m_running;
    QMap<QString, Span> m_spans;
};

/// Keeps the times of a run for the next ones: a journal of the suite's name in a folder, with the
/// start and end of each case alone. Cases that did not run keep the times that they had.
class HistoryReport : public ReportGenerator {
public:
    HistoryReport(const QString& folder, const QString& suite, CaseTimes earlier);

    void add(const ReportEntry& entry) override { m_times.add(entry); }
    /// Writes the file beside its place and moves it there.
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    QString m_folder;
    QString m_suite;
    CaseTimes m_times;
    QString m_error;
};

}  // namespace Tamrix
