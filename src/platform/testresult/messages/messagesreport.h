#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <map>
#include <optional>
#include <vector>

#include "base/export.h"
#include "platform/testresult/messages/featuremessages.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// The scenarios of a run as Cucumber Messages, one JSON object a line, which formatters of that
/// field read. Feature files are read when they run or the report is made of a journal, so they
/// have to be there then. Keeps the messages in memory until finish().
class TAMRIX_EXPORT MessagesReport : public ReportGenerator {
public:
    /// A relative path counts from the current working directory. Missing folders are created; the
    /// file itself is touched by finish() only.
    explicit MessagesReport(const QString& path);

    void add(const ReportEntry& entry) override;
    /// Writes the file beside its place and moves it there.
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    /// A step or a hook of the scenario that runs.
    struct TestStep {
        QString id;
        QString pickleStepId;
        QString hookId;
        QDateTime start;
        QDateTime end;
        QString status = QStringLiteral("PASSED");
        QString message;
        std::optional<StepMatched> match;
        /// Without the ids of what they belong to.
        std::vector<QJsonObject> attachments;
    };
    struct TestCase {
        PickleIds pickle;
        QDateTime start;
        std::vector<TestStep> steps;
        /// How many of them are those of the pickle.
        int pickleSteps = 0;
        bool isInStep = false;
    };

    void startSection(const SectionStarted& section, const QDateTime& time);
    void endSection(const SectionEnded& section, const QDateTime& time);
    void startFeature(const QString& file);
    void addResult(const ResultAdded& result, const QDateTime& time);
    void addFailure(const ResultAdded& result, const QDateTime& time);
    void addFile(const FileAttached& file);
    void addLog(const QString& text);
    void endTestCase(const QDateTime& time);
    void addTestCase(const QString& id, const TestCase& testCase);
    void addRunOf(const QString& startedId, const TestStep& step);
    QString stepDefinitionId(const StepMatched& match);
    void append(const char* kind, const QJsonObject& message);
    QString uriOf(const QString& file) const;

    QString m_path;
    QString m_error;
    QByteArray m_lines;
    MessageIds m_ids;
    QString m_runId;
    QDateTime m_end;
    QString m_suiteFolder;
    bool m_hasFailed = false;
    QString m_failureOutside;
    /// The pickles of each file that was told, by path.
    std::map<QString, std::map<int, PickleIds>> m_features;
    QString m_feature;
    /// The ids of step definitions by their place and expression.
    std::map<QString, QString> m_definitions;
    std::optional<TestCase> m_testCase;
};

}  // namespace Tamrix
