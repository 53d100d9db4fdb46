#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <map>
#include <vector>

#include "platform/testresult/objecttrees.h"
#include "platform/testresult/reportevent.h"
#include "platform/testresult/reportfiles.h"
#include "platform/testresult/runtally.h"
#include "platform/testresult/scriptexcerpts.h"

namespace Tamrix {

/// The entries of a run by CaseTally::id.
using EntriesById = std::map<int, std::vector<ReportEntry>>;

using RunFacts = std::vector<EnvironmentFact>;

/// Makes the data that the page of an HTML report shows. What it holds is told by the scripts in
/// html/, which read it: one object with
///
///     title, summary, notes, isGood, start, milliseconds, results
///     environment facts about the run: name and fact
///     outcomes    id and label of each outcome, in the order of summaries
///     suites      name and path
///     rows        an attempt at a case each, or what happened outside the cases of a suite
///     entries     for each row, the list of what happened
///     excerpts    lines of scripts; positions refer to them by index
///     trees       objects of applications: a list each of depth, description and name; files refer
///                 to them by index
class HtmlData {
public:
    /// `tally`, `entries` and `environment` must live longer. Attachments are copied by `files`,
    /// not owned.
    HtmlData(const RunTally& tally, const EntriesById& entries, const RunFacts& environment,
             ReportFiles* files);

    /// The name of the run: those of its suites.
    QString title() const;

    /// JSON, with a line for each entry and without "<", so that it can stand in a script element.
    QByteArray json();

private:
    /// Adds the row of a case behind those of its earlier attempts.
    void addAttempts(const CaseTally& last, int suite);
    void addRow(const CaseTally& tally, int suite, bool isCase);
    QJsonObject entryObject(const ReportEntry& entry, const QDateTime& rowStart);
    void addResult(QJsonObject& object, const ResultAdded& result);
    /// A link to the moment in the run's trace, if there is one.
    void addTrace(QJsonObject& object, const QDateTime& time);
    void addFile(QJsonObject& object, const FileAttached& file);
    void addStack(QJsonObject& object, const CallStack& callStack);
    void addVideo(QJsonObject& object, const VideoStarted& video, const QDateTime& rowStart);
    /// Whether the page leaves the entry out.
    bool isLeftOut(const ReportEntry& entry);
    QJsonObject objectsObject(const QString& source);
    QJsonObject fileObject(const QString& source, bool isImage);
    void addText(QJsonObject& object, const ReportFiles::Copy& copy);
    /// The event with texts that the page can hold; links to the whole ones go to `object`.
    ReportEvent limitedEvent(const ReportEvent& event, QJsonObject& object);

    const RunTally& m_tally;
    const EntriesById& m_entries;
    const RunFacts& m_environment;
    ReportFiles* m_files;
    ScriptExcerpts m_excerpts;
    ObjectTrees m_trees;
    QJsonArray m_rows;
    /// The lists of the rows, as JSON.
    QByteArray m_rowEntries;
    /// How much the page may still hold: of attached texts in bytes, of the texts of entries in
    /// characters.
    qint64 m_textBudget;
    qint64 m_entryBudget;
    int m_actionCount = 0;
    /// The name of the case whose row is made; empty outside of cases.
    QString m_caseName;
    /// The ends of the videos in the row that is made, by path.
    QMap<QString, const ReportEntry*> m_videoEnds;
};

}  // namespace Tamrix
