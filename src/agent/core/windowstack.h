#pragma once

#include <QPoint>
#include <QVector>
#include <QWindow>

namespace Tamrix::Agent {

/// The dynamic property, with any value, of windows that are the agent's own: not of the
/// application's tree, never in the way of input.
inline constexpr char internalWindowProperty[] = "tamrixInternalWindow";

/// The visible top-level windows of the application, the lowest first, as far as the application
/// itself can tell: dialogs above their owners, what stays on top and popups above all.
QVector<QWindow*> windowStack();

/// The highest window at a point of the screen that takes input, as deep as windows are nested;
/// null for none.
QWindow* windowAt(const QPoint& position);

/// The window that lies over `window` at the point although `window` is active: a popup, what
/// stays on top, a dialog or tool of it. Null for none.
QWindow* windowOver(QWindow* window, const QPoint& position);

/// The window itself or the one that it is embedded in, seen from the screen.
QWindow* topLevelOf(QWindow* window);

}  // namespace Tamrix::Agent
