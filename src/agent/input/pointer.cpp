#include "agent/input/pointer.h"

#include <QGuiApplication>
#include <QStyleHints>
#include <algorithm>

#include "agent/core/windowstack.h"
#include "agent/input/eventtime.h"
#include "agent/input/keyboard.h"
#include "agent/input/windowsystem.h"

namespace Tamrix::Agent {

Pointer& Pointer::self() {
    static Pointer s_self;
    return s_self;
}

QWindow* Pointer::target() const {
    return m_buttons != Qt::NoButton && m_grabber != nullptr ? m_grabber : m_window;
}

void Pointer::move(QWindow* window, const QPoint& position) {
    m_position = position;
    if (m_buttons == Qt::NoButton || m_grabber == nullptr) {
        QWindow* const entered = window != nullptr ? window : windowAt(position);
        if (entered != m_window) {
            if (m_window != nullptr)
                WindowSystem::self().leave(m_window);
            m_window = entered;
            if (m_window != nullptr)
                WindowSystem::self().enter(m_window, position);
        }
    }
    queue(QEvent::MouseMove, Qt::NoButton);
}

void Pointer::press(Qt::MouseButton button) {
    if (m_buttons == Qt::NoButton)
        m_grabber = m_window;
    m_buttons |= button;
    m_lastPress = m_position;
    m_pressTime = eventTime();
    queue(QEvent::MouseButtonPress, button);
}

void Pointer::release(Qt::MouseButton button) {
    QWindow* const window = target();
    m_buttons &= ~Qt::MouseButtons(button);
    // The window that had the press gets the last release, too.
    const QPointer<QWindow> under = m_window;
    m_window = window;
    queue(QEvent::MouseButtonRelease, button);
    m_window = under;
    if (m_buttons == Qt::NoButton)
        m_grabber = nullptr;
}

void Pointer::leaveToPopup() {
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const bool isOpen = std::any_of(windows.cbegin(), windows.cend(), [](const QWindow* window) {
        return window->isVisible() && window->type() == Qt::Popup;
    });
    if (isOpen && m_window && m_window->type() != Qt::Popup && m_buttons == Qt::NoButton)
        m_window = nullptr;
}

void Pointer::separateClicks() {
    const ulong interval = QGuiApplication::styleHints()->mouseDoubleClickInterval();
    const ulong passed = eventTime() - m_pressTime;
    if (m_lastPress && passed <= interval)
        advanceEventTime(interval - passed + 1);
}

void Pointer::queue(QEvent::Type type, Qt::MouseButton button) {
    QWindow* const window = target();
    if (window == nullptr)
        return;
    WindowSystem::self().mouse(window, m_position,
                               {type, m_buttons, button, Keyboard::self().modifiers()});
}

}  // namespace Tamrix::Agent
