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

/// For names and values: backslash, newline, ",", "#" and "=" get a backslash in front (newline
/// becomes backslash and "n").
QString escapeForVariablePrinting(QString text);

/// For the details of a failed look-up: printable ASCII as it is but for backslash and double
/// quote, everything else as a backslash escape ("\n", "\t", "\xHH", "\uHHHH").
QString escapeNonPrintable(const QString& text);

/// The text's bytes in the encoding of the dialect.
std::string encodeForDialect(const QString& text, ProtocolDialect dialect);

}  // namespace Tamrix
