#pragma once

#include <QPoint>
#include <QPointer>
#include <QWindow>
#include <optional>

namespace Tamrix::Agent {

/// The mouse: where it is, over which window, with which buttons down. Each operation queues
/// events of the window system and returns at once; the event loop delivers them. The system's own
/// cursor stays where it is. Positions are on the screen. One for each process, GUI thread only.
class Pointer {
public:
    static Pointer& self();

    QPoint position() const { return m_position; }
    Qt::MouseButtons buttons() const { return m_buttons; }
    /// Where a button was pressed last, for reports; nothing before the first press.
    std::optional<QPoint> lastPress() const { return m_lastPress; }

    /// Moves to the window's point, leaving one window and entering the other; with a button down
    /// the window where it was pressed gets the event. A null window: the one at that point.
    void move(QWindow* window, const QPoint& position);
    /// Presses or releases at the last position.
    void press(Qt::MouseButton button);
    void release(Qt::MouseButton button);
    /// An open popup has the mouse, as keys may close it: the next move enters its window anew, as
    /// a real mouse does when a popup goes.
    void leaveToPopup();
    /// Takes care that the next press makes no double click with an earlier one.
    void separateClicks();

private:
    Pointer() = default;
    QWindow* target() const;
    void queue(QEvent::Type type, Qt::MouseButton button);

    QPoint m_position = QPoint(-1, -1);
    QPointer<QWindow> m_window;
    /// Has the mouse until all buttons are up.
    QPointer<QWindow> m_grabber;
    Qt::MouseButtons m_buttons;
    std::optional<QPoint> m_lastPress;
    ulong m_pressTime = 0;
};

}  // namespace Tamrix::Agent
