#pragma once

#include <QStringList>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// Texts that nobody is to read, such as passwords: what is told to a person goes through hidden().
class TAMRIX_EXPORT Secrets {
public:
    Secrets() = default;
    explicit Secrets(const QStringList& secrets);

    bool isEmpty() const { return m_forms.isEmpty(); }
    /// The text with asterisks for each secret in it, whatever its length.
    QString hidden(const QString& text) const;
    /// In all forms in which they may stand in a text, the longest first.
    const QStringList& forms() const { return m_forms; }

private:
    QStringList m_forms;
};

/// Stands in front of another report, which gets everything without the secrets. What a script
/// writes in parts is looked through part by part.
class TAMRIX_EXPORT SecretsFilter : public ReportGenerator {
public:
    /// `report` is not owned and outlives this.
    explicit SecretsFilter(ReportGenerator* report) : m_report(report) {}

    void setSecrets(const Secrets& secrets) { m_secrets = secrets; }

    void add(const ReportEntry& entry) override;
    void finish() override { m_report->finish(); }
    QString errorText() const override { return m_report->errorText(); }
    QIODevice* openVideo(const QString& targetPath, QString* error) override {
        return m_report->openVideo(targetPath, error);
    }

private:
    ReportGenerator* m_report;
    Secrets m_secrets;
};

}  // namespace Tamrix
