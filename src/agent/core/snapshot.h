#pragma once

#include <QByteArray>

#include "agent/core/element.h"

namespace Tamrix::Agent {

/// The tree below an element, or of all windows for a null one, in the stream form of
/// UIAbstraction::UIElement. A part of it comes with all properties of each object, the whole tree
/// with those that tell what state an object is in; a picture of the element, or of each window,
/// comes when asked for. Plain objects without part in the picture, and the toolkits' inner
/// workings, are left out.
QByteArray takeSnapshot(const Element& element, bool withImages);

}  // namespace Tamrix::Agent
