#pragma once

#include <QByteArray>
#include <memory>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

class QIODevice;

namespace Tamrix {

/// Tells a run to a person as it goes on, and sums it up at the end. Everything that belongs to an
/// entry is written before add() returns.
///
/// Messages can't control the terminal: control characters in them appear as escapes. What the
/// script writes goes through as it is.
class TAMRIX_EXPORT ConsoleReport : public ReportGenerator {
public:
    enum class Verbosity {
        Quiet,   ///< failures and the summary
        Normal,  ///< also a line for each case and scenario, and the script's output
        Verbose  ///< also every result, section and attachment as it happens
    };

    /// What only a terminal takes.
    enum class Decoration {
        None,
        Colours,
        ColoursAndRunningCase  ///< also a line that shows the running case and goes away again
    };

    /// `device` is open for writing and not owned.
    ConsoleReport(QIODevice* device, Verbosity verbosity, Decoration decoration);
    /// Owns the device.
    ConsoleReport(std::unique_ptr<QIODevice> device, Verbosity verbosity, Decoration decoration);
    ~ConsoleReport() override;

    void add(const ReportEntry& entry) override;
    /// Writes the summary.
    void finish() override;
    QString errorText() const override { return m_error; }

    /// What the line tells that goes away again, in place of the running case; empty for that.
    void showStatus(const QString& status);

private:
    /// A suite or case starts, which has a line of its own from a verbosity on.
    void startLevel(const CaseTally& tally, Verbosity announcedFrom);
    void startSection(const SectionStarted& section);
    void endSection(const SectionEnded& section);
    void addResult(const ResultAdded& result, const CaseTally& tally);
    /// A line of what only the verbose report tells.
    void addDetail(const QString& text, const char* colour = "");
    void addOutput(const OutputWritten& output);
    void announceCase(const CaseTally& tally);
    void addItem(const ItemDescribed& item);
    void addScenarioLine(const ScenarioTally& scenario, const CaseTally& testCase);
    void addCaseLine(const CaseTally& testCase);
    void addOutcomeLine(const Tally& tally, const QString& note, int indent);
    void addIncompleteCases();
    void addSummary();

    /// Adds a text of our own on lines of its own, indented.
    void addLine(const QString& text, int indent = 0, const char* colour = "");
    int resultIndent() const;
    /// The line that goes away again; empty when there is nothing to show.
    QByteArray passingLine() const;
    /// Writes what the entry has added.
    void flush();

    std::unique_ptr<QIODevice> m_ownDevice;
    QIODevice* m_device;
    Verbosity m_verbosity;
    Decoration m_decoration;
    RunTally m_tally;
    QByteArray m_pending;
    /// Whether the script's output, which may end anywhere, has ended with a line feed.
    bool m_isAtLineStart = true;
    /// Empty when the line that goes away is not shown.
    QByteArray m_shownLine;
    QString m_status;
    /// The case or suite that a heading was written for last.
    int m_announcedId = -1;
    int m_sectionDepth = 0;
    QString m_error;
};

}  // namespace Tamrix
