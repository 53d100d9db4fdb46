#pragma once

#include <QString>

#include "interpreter/debugger/frontend.h"

namespace Tamrix {

/// The line at which a script stands with two lines around it, each behind its number and ended by
/// a line feed; ">" marks the line itself. Empty where the file can't be read or has no such line.
QString sourceAround(const ScriptPosition& position);

}  // namespace Tamrix
