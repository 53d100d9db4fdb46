#pragma once

#include <QString>
#include <string>

#include "interpreter/debugger/lineprotocol/protocoltext.h"

namespace Tamrix {

/// Writes the lines of one dialect. Each line stands behind the dialect's prefix and is flushed at
/// once.
class ProtocolOutput {
public:
    explicit ProtocolOutput(ProtocolDialect dialect) : m_dialect(dialect) {}

    ProtocolDialect dialect() const { return m_dialect; }
    /// A line on standard output.
    void print(const std::string& text) const;
    /// A line on standard error.
    void fail(const std::string& text) const;
    /// A text in the dialect's encoding.
    std::string encoded(const QString& text) const { return encodeForDialect(text, m_dialect); }
    /// The same with what has a meaning in a listing escaped.
    std::string escaped(const QString& text) const;

private:
    ProtocolDialect m_dialect;
};

}  // namespace Tamrix
