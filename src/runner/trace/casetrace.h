#pragma once

#include <QElapsedTimer>
#include <QMap>
#include <QSet>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>

#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/secrets.h"
#include "runner/trace/tilestore.h"
#include "runner/trace/tracedobjects.h"
#include "vision/screenshot/screenshot.h"
#include "wire/messages.h"

namespace Tamrix {

/// Of which test cases a run keeps a trace.
enum class TraceMode { Off, On, Failed };

/// What a trace is told by the current application, if there is one that answers.
struct TraceView {
    /// Whether it answers: the others are asked for only then.
    std::function<bool()> answers;
    std::function<Screenshot()> picture;
    std::function<std::optional<Wire::ObjectListing>()> objects;
    /// Where the mouse was pressed last, in native coordinates.
    std::function<std::optional<QPoint>()> lastPress;
    /// What the case's applications have written since the last call, also those that have ended,
    /// by name of the stream.
    std::function<QMap<QString, QByteArray>()> output;
};

/// Keeps what a test case does, step by step, in the folder of a trace (see tracefolder.h): each
/// action and verdict, with what the screen and the objects were behind it. It is a report
/// generator in front of another one, which gets everything first. Script thread only.
///
/// What can't be written is told once, by errorText(), and ends the trace; the run goes on.
class CaseTrace : public ReportGenerator {
public:
    /// `report` is not owned and outlives this; so do the passwords' owner and the view's.
    CaseTrace(TraceMode mode, const QString& folder, const TraceView& view,
              ReportGenerator* report);

    /// What is not to be kept of objects, scripts and what programs write. Who adds entries leaves
    /// it out of these.
    void setSecrets(const Secrets& secrets) { m_secrets = secrets; }

    void add(const ReportEntry& entry) override;
    void finish() override { m_report->finish(); }
    QString errorText() const override { return m_report->errorText(); }
    QIODevice* openVideo(const QString& targetPath, QString* error) override {
        return m_report->openVideo(targetPath, error);
    }

private:
    /// What the page shows of a step, beside what all steps have.
    using Fields = QMap<QString, QVariant>;

    void startCase(const ReportEntry& entry, const CaseStarted& start);
    void endCase(const ReportEntry& entry, const CaseEnded& end);
    void addAction(const ReportEntry& entry, const ActionEnded& action);
    void addResult(const ReportEntry& entry, const ResultAdded& result);
    void addOther(const ReportEntry& entry, const Fields& fields);
    /// `looks`: the screen and the objects may have changed.
    void addStep(const ReportEntry& entry, Fields fields, bool looks, bool marksPress);
    Outcome<> tryAddStep(const ReportEntry& entry, Fields fields, bool looks, bool marksPress);

    Outcome<> addPicture(Fields& fields, bool isWhole, bool marksPress);
    QByteArray objectsMember(bool isWhole);
    void addOutput(Fields& fields);
    void addSource(const LineInfo& position);
    QString stepsPath() const;
    void give(const Outcome<>& outcome);

    TraceMode m_mode;
    QString m_folder;
    TraceView m_view;
    ReportGenerator* m_report;
    Secrets m_secrets;

    // The running case; an empty name for none.
    QString m_case;
    QDateTime m_start;
    int m_steps = 0;
    bool m_hasFailed = false;
    /// It did not answer; nobody waits for it again until an action succeeds.
    bool m_isSilent = false;
    std::unique_ptr<TileStore> m_tiles;
    /// The native coordinates of the picture's corners: left, top, right, bottom.
    QVariantList m_native;
    TracedObjects m_objects;
    /// Of each stream, what is told when more has come: it ends within a character or a secret.
    QMap<QString, QByteArray> m_heldOutput;
    QSet<QString> m_sources;
};

}  // namespace Tamrix
