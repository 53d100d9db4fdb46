#pragma once

#include <QString>
#include <string>

namespace Tamrix {

// How texts stand in the lines of the protocol.

enum class ProtocolDialect {
    Terminal,  ///< for a person: no prefix, the local encoding
    Machine    ///< for a program over a pipe: each line with a prefix, UTF-8
};

/// What stands in front of every line.
const char* linePrefix(ProtocolDialect dialect);

/// The text's bytes in the encoding of the dialect.
std::string encodeForDialect(const QString& text, ProtocolDialect dialect);

}  // namespace Tamrix
