#pragma once

#include <QString>
#include <utility>

namespace Tamrix {

/// What became of a verification point. A plain value.
class VPResult {
public:
    /// The values of summary().
    enum Summary { NoVerdict = 0, Passed = 1, Failed = 2 };

    /// The outcome of a comparison, whatever a script wanted it to be.
    static VPResult verdict(bool passed, const QString& message, const QString& details) {
        return {passed ? Passed : Failed, message, details};
    }
    /// There was nothing to be compared, for this reason.
    static VPResult error(const QString& message) { return {NoVerdict, message, QString()}; }

    int summary() const { return m_summary; }
    /// The headline of the result with the note about its screenshot, or the error without verdict.
    QString message() const { return m_message; }
    QString details() const { return m_details; }

private:
    VPResult(Summary summary, QString message, QString details)
        : m_summary(summary), m_message(std::move(message)), m_details(std::move(details)) {}

    Summary m_summary;
    QString m_message;
    QString m_details;
};

}  // namespace Tamrix
