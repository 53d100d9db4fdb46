#pragma once

#include <QPoint>
#include <Qt>
#include <optional>

#include "wire/callarguments.h"

namespace Tamrix::Wire {

/// How a mouse action is done: one button, with modifiers held.
struct MouseStyle {
    Qt::MouseButton button = Qt::LeftButton;
    Qt::KeyboardModifiers modifiers;
};

/// Whether it is the number of one button.
bool isMouseButton(int number);
/// "3 is no mouse button: 1 is left, 2 right, 4 middle"
QString noMouseButtonText(int number);

/// Reads "[, x, y]".
std::optional<QPoint> takeOffset(CallArguments* arguments);
/// Reads "[, button][, modifiers]", by names or numbers, and the end. Throws CallError.
MouseStyle takeMouseStyle(CallArguments* arguments);

}  // namespace Tamrix::Wire
