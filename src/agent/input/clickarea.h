#pragma once

#include <QRect>

#include "agent/core/element.h"

namespace Tamrix::Agent {

/// The part of an element in which a click acts on it, on the screen: all of it for most, mark and
/// label of a check box, the title's mark of a group box that can be checked, the mark of a
/// checkable item when `forMark`.
QRect clickArea(const Element& element, bool forMark = false);

}  // namespace Tamrix::Agent
