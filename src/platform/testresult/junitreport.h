#pragma once

#include <map>
#include <memory>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

namespace Tamrix {

class ReportFiles;
class ReportXml;

/// JUnit XML for continuous integration servers. A case becomes a testcase element, its failures
/// one failure or error element. A case that runs scenarios of features has one for each of these
/// instead, and one of its own only for what went wrong outside of them. Earlier attempts at a case
/// become flakyFailure or rerunFailure elements, and the like. What happened outside the cases
/// becomes a testcase of the suite's own name when it failed. Of texts that are too long for
/// readers of XML the file holds the ends, and the folder FILE-texts beside it the whole. Keeps the
/// run in memory until finish().
class TAMRIX_EXPORT JUnitReport : public ReportGenerator {
public:
    /// A relative path counts from the current working directory. Missing folders are created; the
    /// file itself is touched by finish() only.
    explicit JUnitReport(const QString& path);
    ~JUnitReport() override;

    void add(const ReportEntry& entry) override;
    /// Writes the file beside its place and moves it there, so that an earlier one stays until the
    /// new one is whole.
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    /// What the elements system-out and system-err hold.
    struct Texts {
        QString out;
        QString err;
        /// Paths; each stands once, whether the video has an end or not.
        QStringList videos;
    };

    void addLine(Texts& texts, const QString& line);
    void writeSuite(ReportXml& xml, const SuiteTally& suite);
    /// A testcase element.
    struct Element {
        QString name;
        QString className;
        const Tally* tally = nullptr;
        const std::vector<ResultAdded>* failures = nullptr;
        CaseOutcome outcome = CaseOutcome::Passed;
        bool isSuiteItself = false;
        /// Of a scenario.
        QString failedStep = QString();
        /// Of a case as such; null for others.
        const CaseTally* testCase = nullptr;
    };
    std::vector<Element> elementsOf(const CaseTally& testCase, const QString& suiteName) const;
    std::vector<Element> elementsOf(const SuiteTally& suite) const;
    void writeElement(ReportXml& xml, const Element& element);
    /// Writes the one element for all that went wrong: the consumers read no more than one.
    void writeOutcome(ReportXml& xml, const Element& element);
    /// Writes the attributes of such an element and returns its text.
    QString writeProblem(ReportXml& xml, const Element& element);
    void writeEarlierAttempts(ReportXml& xml, const CaseTally& testCase);
    void writeTexts(ReportXml& xml, int id);
    /// A text that an element can hold.
    QString limited(const QString& text, const QString& name);
    /// The place of a whole text beside the report, which writeTexts() mentions.
    QString storeWhole(const QString& text, const QString& name);

    QString m_path;
    QString m_error;
    RunTally m_tally;
    /// By CaseTally::id.
    std::map<int, Texts> m_texts;
    /// Which part of each suite this is, by the suite's id.
    std::map<int, QString> m_shards;
    std::unique_ptr<ReportFiles> m_files;
    /// Paths of the whole texts of the case that is being written.
    QStringList m_wholes;
};

}  // namespace Tamrix
