#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

// How texts are escaped in the debugger's line protocol, where blank, comma, "#", "=" and the end
// of a line have meanings of their own. Each pair is one the inverse of the other.

/// For names and values: backslash, newline, ",", "#" and "=" get a backslash in front (newline
/// becomes backslash and "n").
TAMRIX_EXPORT QString escapeForVariablePrinting(QString text);
/// A backslash in front of anything else stands for itself.
TAMRIX_EXPORT QString unescapeVariablePrinting(const QString& text);

/// For the details of a failed look-up: printable ASCII as it is but for backslash and double
/// quote, everything else as a backslash escape ("\n", "\t", "\xHH", "\uHHHH").
TAMRIX_EXPORT QString escapeNonPrintable(const QString& text);
/// Also takes "\ " for a blank, with which a path stays one word of a command, and hexadecimal
/// digits of both cases. What is no whole escape stands for itself.
TAMRIX_EXPORT QString unescapeNonPrintable(const QString& text);

}  // namespace Tamrix
