#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

/// Replaces the characters that would control a terminal by escapes that can be read, such as \x1b;
/// tabs and line feeds stay.
TAMRIX_EXPORT QString escapedForTerminal(const QString& text);

/// Replaces the characters that XML 1.0 does not allow by escapes that can be read, such as \x00.
TAMRIX_EXPORT QString escapedForXml(const QString& text);

}  // namespace Tamrix
