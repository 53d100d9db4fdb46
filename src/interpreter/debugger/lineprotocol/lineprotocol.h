#pragma once

#include <string>

#include "interpreter/debugger/frontend.h"
#include "interpreter/debugger/lineprotocol/protocoltext.h"

namespace Tamrix {

/// The front end of lines on standard output: one line for each stop and notification, flushed at
/// once. Nobody commands over it, so that every script goes on behind its stops.
class TAMRIX_EXPORT LineProtocol : public DebuggerFrontEnd {
public:
    explicit LineProtocol(ProtocolDialect dialect) : m_dialect(dialect) {}

    void stopped(const ScriptPosition& position, const StopReason& reason) override;
    void passed(const ScriptPosition& position) override;
    void notify(const QString& key, const QString& value) override;
    std::optional<DebuggerCommand> waitForCommand() override;
    void reply(const DebuggerCommand& command, const Outcome<BreakPointReply>& answer) override;

private:
    std::string encoded(const QString& text) const;
    std::string escaped(const QString& text) const;
    /// Prints a line behind the dialect's prefix and flushes.
    void print(const std::string& text) const;
    /// "line 3, column 4, FILE:"
    std::string positionText(const ScriptPosition& position) const;
    /// The fields with which a failed look-up is told: line, column and path.
    std::string positionFields(const ScriptPosition& position) const;

    ProtocolDialect m_dialect;
};

}  // namespace Tamrix
