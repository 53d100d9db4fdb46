#include "platform/testresult/secrets.h"

#include <algorithm>

#include "platform/testresult/longtext.h"

namespace Tamrix {

Secrets::Secrets(const QStringList& secrets) : m_forms(secrets) {
    // As names of objects have them.
    for (QString secret : secrets) {
        secret.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
            .replace(QLatin1Char('\''), QLatin1String("\\'"));
        m_forms.append(secret);
    }
    m_forms.removeAll(QString());
    m_forms.removeDuplicates();
    // Where one begins like another, nothing is left of the longer one.
    std::sort(m_forms.begin(), m_forms.end(),
              [](const QString& one, const QString& other) { return one.size() > other.size(); });
}

QString Secrets::hidden(const QString& text) const {
    QString result = text;
    for (const QString& secret : m_forms)
        result.replace(secret, QStringLiteral("******"));
    return result;
}

void SecretsFilter::add(const ReportEntry& entry) {
    if (m_secrets.isEmpty()) {
        m_report->add(entry);
        return;
    }
    ReportEntry shown = entry;
    changeTexts(&shown.event, [this](QString* text) { *text = m_secrets.hidden(*text); });
    m_report->add(shown);
}

}  // namespace Tamrix
