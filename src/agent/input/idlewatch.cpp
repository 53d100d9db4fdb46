#include "agent/input/idlewatch.h"

#include <QCoreApplication>
#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <climits>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/input/windowsystem.h"

namespace Tamrix::Agent {

namespace {

constexpr int longestWait = 500;

/// How long nothing may happen, in ms, before the application counts as idle.
int quietTime() {
    int time = 0;
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow* window : windows) {
        const Element element = Session::self()->element(window);
        if (window->isVisible() && !element.isNull())
            time = std::max(time, element.toolkit->quietTime());
    }
    return time;
}

QEvent::Type markerType() {
    static const auto s_type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return s_type;
}

/// Whether the event is part of watching, or tells nothing about the application.
bool isOfTheAgent(const QObject* object) {
    for (; object != nullptr; object = object->parent())
        if (object == Session::self())
            return true;
    return false;
}

}  // namespace

IdleWatch::IdleWatch(QObject* parent) : QObject(parent) {
    m_timer.setParent(this);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &IdleWatch::endRound);
    QCoreApplication::instance()->installEventFilter(this);
}

void IdleWatch::start(std::function<void()> done) {
    auto* const watch = new IdleWatch(Session::self());
    watch->m_done = std::move(done);
    watch->m_clock.start();
    watch->m_quietClock.start();
    watch->beginRound();
}

void IdleWatch::beginRound() {
    // A question to the window system: what it has sent by now is in the queue afterwards.
    QCursor::pos();
    m_isQuiet = true;
    // Comes when all that is posted, and what that posts, is delivered...
    QCoreApplication::postEvent(this, new QEvent(markerType()), INT_MIN);
}

bool IdleWatch::event(QEvent* event) {
    if (event->type() != markerType())
        return QObject::event(event);
    // ...and this one after the zero timers that are due.
    m_timer.start(m_isQuiet ? 1 : 0);
    return true;
}

void IdleWatch::endRound() {
    if (WindowSystem::self().queuedEvents() > 0)
        m_isQuiet = false;
    if (!m_isQuiet)
        m_quietClock.restart();
    const bool isIdle = m_isQuiet && m_quietClock.elapsed() >= quietTime();
    if (!isIdle && !m_clock.hasExpired(longestWait)) {
        beginRound();
        return;
    }
    QCoreApplication::instance()->removeEventFilter(this);
    deleteLater();
    if (const std::function<void()> done = std::move(m_done))
        done();
}

bool IdleWatch::eventFilter(QObject* object, QEvent* event) {
    // Timers that are not due at once (a blinking cursor) may always run.
    const auto* const timer = qobject_cast<QTimer*>(object);
    const bool isLater =
        event->type() == QEvent::Timer && (timer == nullptr || timer->interval() > 0);
    if (!isLater && !isOfTheAgent(object))
        m_isQuiet = false;
    return QObject::eventFilter(object, event);
}

}  // namespace Tamrix::Agent
