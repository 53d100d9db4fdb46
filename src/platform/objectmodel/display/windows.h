#pragma once

#include <QRect>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "platform/objectmodel/display/xconnection.h"

namespace Tamrix::Display {

/// What an X server and the window's program tell of a top-level window.
struct WindowFacts {
    xcb_window_t id = 0;
    /// The child of the root window that it is, or is in: its frame where a window manager has put
    /// one around it.
    xcb_window_t frame = 0;
    QString title;
    /// Both names of WM_CLASS, and WM_WINDOW_ROLE.
    QString windowClass;
    QString instance;
    QString role;
    /// "normal", "dialog", "menu", "popup_menu" and so on.
    QString type;
    /// -1 when it is not known.
    qint64 pid = -1;
    /// On the screen, without a frame.
    QRect geometry;
    bool isVisible = false;
    /// A menu, list or the like: no window manager knows it, and it takes no focus.
    bool isPopup = false;
    bool isModal = false;
    /// The window for which it is there; 0 for none.
    xcb_window_t owner = 0;
    /// Whether it can be asked to close, whether it lives, and to take the focus.
    bool takesDelete = false;
    bool takesPing = false;
    bool takesFocus = false;
};

/// Tells whether a process is one of the application.
using ProcessTest = std::function<bool(qint64 pid)>;

/// The application's windows in the order of their numbers, which is for each program that of their
/// making: those that are shown, and those that a window manager has put away. A window whose
/// process nobody knows counts. Fails only when the connection has ended.
Outcome<std::vector<WindowFacts>> listWindows(XConnection& connection, const ProcessTest& isOwn);

/// The facts of one window; nothing when it is gone.
std::optional<WindowFacts> factsOf(XConnection& connection, xcb_window_t window);

/// The child of the root window that has the point, which gets the mouse there; 0 for none.
xcb_window_t frameAt(XConnection& connection, const QPoint& point);

}  // namespace Tamrix::Display
