#include "agent/events/eventwatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <algorithm>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

namespace {

bool isSame(const Wire::EventHandler& a, const Wire::EventHandler& b) {
    return a.handle == b.handle && a.className == b.className && a.event == b.event &&
           a.callback == b.callback;
}

bool isOfClass(const Element& element, const QString& className) {
    return element.toolkit->typeName(element) == className ||
           element.toolkit->superTypes(element).contains(className);
}

}  // namespace

void EventWatch::install(const Wire::EventHandler& handler, QObject* object,
                         const QSet<int>& types) {
    const bool isThere = std::any_of(m_entries.cbegin(), m_entries.cend(), [&](const Entry& entry) {
        return isSame(entry.handler, handler);
    });
    if (!isThere)
        m_entries.append(Entry{handler, object, types});
    updateFilter();
}

bool EventWatch::uninstall(const Wire::EventHandler& handler) {
    const auto end = std::remove_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return isSame(entry.handler, handler);
    });
    const bool isFound = end != m_entries.end();
    m_entries.erase(end, m_entries.end());
    updateFilter();
    return isFound;
}

void EventWatch::removeDead() {
    const auto end = std::remove_if(m_entries.begin(), m_entries.end(), [](const Entry& entry) {
        return entry.handler.handle != 0 && entry.object == nullptr;
    });
    m_entries.erase(end, m_entries.end());
}

void EventWatch::updateFilter() {
    removeDead();
    const bool isWanted = !m_entries.isEmpty();
    if (isWanted == m_isFiltering)
        return;
    m_isFiltering = isWanted;
    if (isWanted)
        QCoreApplication::instance()->installEventFilter(this);
    else
        QCoreApplication::instance()->removeEventFilter(this);
}

bool EventWatch::matches(const Entry& entry, QObject* object, int type) {
    if (!entry.types.contains(type))
        return false;
    if (entry.handler.handle != 0)
        return entry.object == object;
    const Element element = Session::self()->element(object);
    if (element.isNull())
        return false;
    if (!entry.handler.className.isEmpty())
        return isOfClass(element, entry.handler.className);
    // What only stands for another object, as the window behind a widget does, has the same events
    // once more.
    return element.object == object && !element.toolkit->isInternal(element);
}

bool EventWatch::eventFilter(QObject* object, QEvent* event) {
    // What asking the object and telling of it cause is no news.
    if (m_isSending)
        return false;
    m_isSending = true;
    bool hasDead = false;
    const int type = event->type();
    for (const Entry& entry : qAsConst(m_entries)) {
        hasDead = hasDead || (entry.handler.handle != 0 && entry.object == nullptr);
        if (!matches(entry, object, type))
            continue;
        Wire::EventFired fired;
        fired.callback = entry.handler.callback;
        fired.object = Session::self()->info(Session::self()->element(object));
        Session::self()->sendEvent(fired);
    }
    m_isSending = false;
    if (hasDead)
        updateFilter();
    return false;
}

}  // namespace Tamrix::Agent
