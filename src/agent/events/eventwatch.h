#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>

#include "wire/messages.h"

namespace Tamrix::Agent {

/// The event handlers of scripts: sees every event of the application's main thread while there are
/// any, and tells the runner of those that one of them asks for. One for each session, whose child
/// it is.
class EventWatch : public QObject {
public:
    explicit EventWatch(QObject* parent) : QObject(parent) {}

    /// `object` is the one of the handler, null for a class or all objects. A handler that is there
    /// already is not added again.
    void install(const Wire::EventHandler& handler, QObject* object, const QSet<int>& types);
    /// False when there is no such handler.
    bool uninstall(const Wire::EventHandler& handler);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Entry {
        Wire::EventHandler handler;
        QPointer<QObject> object;
        QSet<int> types;
    };

    static bool matches(const Entry& entry, QObject* object, int type);
    void removeDead();
    void updateFilter();

    QList<Entry> m_entries;
    bool m_isFiltering = false;
    bool m_isSending = false;
};

}  // namespace Tamrix::Agent
