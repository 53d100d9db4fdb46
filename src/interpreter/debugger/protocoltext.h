#pragma once

#include <QString>
#include <string>

namespace Tamrix {

// How texts stand in the lines that the debugger prints for its front end.

/// For names and values: backslash, newline, ",", "#" and "=" get a backslash in front (newline
/// becomes backslash and "n").
QString escapeForVariablePrinting(QString text);

/// For the details of a failed look-up: printable ASCII as it is but for backslash and double
/// quote, everything else as a backslash escape ("\n", "\t", "\xHH", "\uHHHH").
QString escapeNonPrintable(const QString& text);

/// The text's bytes in the dialect: the local encoding at a terminal (`verbose`), UTF-8 for a front
/// end.
std::string encodeForDialect(const QString& text, bool verbose);

}  // namespace Tamrix
