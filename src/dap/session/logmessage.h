#pragma once

#include <QString>
#include <vector>

namespace Tamrix::Dap {

/// A piece of a log point's message.
struct LogPart {
    QString text;
    /// The text is code whose value is shown.
    bool isCode = false;

    bool operator==(const LogPart&) const = default;
};

/// Splits a message at its expressions in braces, which may hold braces themselves. A brace without
/// its partner is text.
std::vector<LogPart> splitLogMessage(const QString& message);

}  // namespace Tamrix::Dap
