#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <vector>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

namespace Tamrix {

/// A folder of results as Allure reads them: a file for each attempt at a case, written when it has
/// ended, and copies of its attachments. Results that lie in the folder from earlier stay: to
/// Allure they are earlier attempts. Keeps nothing of a case that has ended but its outcome.
class TAMRIX_EXPORT AllureReport : public ReportGenerator {
public:
    /// A relative path counts from the current working directory. The folder is created when it is
    /// missing.
    explicit AllureReport(const QString& folder);

    void add(const ReportEntry& entry) override;
    /// Writes the cases that have not ended, and what failed outside of cases.
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    /// A list of steps that is open.
    struct Level {
        QJsonObject step;
        QJsonArray steps;
    };

    void startCase();
    void writeCase(const CaseTally& tally, const QString& suite);
    void addStep(const QJsonObject& step);
    void endLevel(const QDateTime& time);
    void addAttachment(const QString& name, const QString& path);
    void write(const QString& name, const QByteArray& bytes);

    QString m_folder;
    QString m_error;
    RunTally m_tally;
    // The case that runs, or what happens outside of one.
    int m_id = -1;
    std::vector<Level> m_levels;
    QJsonArray m_attachments;
    int m_attachmentNumber = 0;
    QString m_uuid;
};

}  // namespace Tamrix
