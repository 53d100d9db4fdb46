#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// What one run has left, usually a shard of a suite: its folder of results with the journal.
struct Bundle {
    /// The journal's file.
    QString journal;
    QString suite;
    QString folder;
    /// When it began, and of its last entry.
    QDateTime first;
    QDateTime last;
    /// What the run says of itself: "2/4 of 40 cases, division 1a2b"; empty for no shard.
    QString shard;
    /// The cases that came to an end, and those that did not.
    QHash<QString, int> ended;
    QHash<QString, int> open;
    bool hasEnded = false;
};

/// Puts the bundles of a suite's shards into one report. What is there is taken, whatever is
/// missing; what is wrong is told, and stands in the report where it concerns results. Reads each
/// journal twice and keeps no more of it than the names of its cases.
class BundleMerge {
public:
    /// `report` is not owned and outlives this.
    explicit BundleMerge(ReportGenerator* report) : m_report(report) {}

    /// `path` is a folder of results or a journal. What can't be taken at all is a problem.
    void add(const QString& path);
    /// Merges what was added. Once.
    void merge();

    /// What a person should know, a line each.
    const QStringList& problems() const { return m_problems; }
    /// Whether there is nothing to merge.
    bool isEmpty() const { return m_bundles.empty(); }
    QString suite() const;

private:
    void checkEnds();
    void checkShards();
    /// For each case the bundle that has the say.
    QHash<QString, size_t> owners() const;
    std::pair<QDateTime, QDateTime> timeSpan() const;
    /// A problem that concerns the results.
    void addGap(const QString& text);

    ReportGenerator* m_report;
    std::vector<Bundle> m_bundles;
    QStringList m_problems;
    QStringList m_gaps;
};

}  // namespace Tamrix
