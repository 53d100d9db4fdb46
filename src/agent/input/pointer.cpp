#include "agent/input/pointer.h"

#include <private/qhighdpiscaling_p.h>
#include <qpa/qwindowsysteminterface.h>
#include <QGuiApplication>
#include <QStyleHints>

#include "agent/core/windowstack.h"
#include "agent/input/eventtime.h"
#include "agent/input/keyboard.h"

namespace Tamrix::Agent {

using Delivery = QWindowSystemInterface::AsynchronousDelivery;

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
                QWindowSystemInterface::handleLeaveEvent<Delivery>(m_window);
            m_window = entered;
            if (m_window != nullptr) {
                const QPointF local = m_window->mapFromGlobal(position);
                QWindowSystemInterface::handleEnterEvent<Delivery>(
                    m_window, QHighDpi::toNativeLocalPosition(local, m_window.data()),
                    QHighDpi::toNativePixels(QPointF(position), m_window.data()));
            }
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
    const QPointF local = window->mapFromGlobal(m_position);
    QWindowSystemInterface::handleMouseEvent<Delivery>(
        window, eventTime(), QHighDpi::toNativeLocalPosition(local, window),
        QHighDpi::toNativePixels(QPointF(m_position), window), m_buttons, button, type,
        Keyboard::self().modifiers());
}

}  // namespace Tamrix::Agent
