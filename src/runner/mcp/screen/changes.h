#pragma once

#include <QString>

#include "runner/mcp/screen/view.h"

namespace Tamrix::Mcp {

/// What is otherwise in a view than in an earlier one, a line each: texts and states that changed,
/// new windows and other new objects with what is in them, what is gone. Short: of much of a kind
/// the first, and the count of the rest. Empty when nothing changed that a person sees.
QString changesText(const View& before, const View& after);

}  // namespace Tamrix::Mcp
