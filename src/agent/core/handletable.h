#pragma once

#include <QHash>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QString>

#include "agent/core/element.h"
#include "base/outcome.h"

namespace Tamrix::Agent {

/// Numbers that stand for elements outside of the process. An element keeps its number as long as
/// it lives; a number is never given twice. An item of a model keeps it when its row moves. GUI
/// thread only.
class HandleTable {
public:
    /// The element's handle, made on first use.
    quint64 handle(const Element& element);
    /// The element of a handle. When it is gone or there never was one, a failure of kind Gone with
    /// the sentence that says so and what it was.
    Outcome<Element> find(quint64 handle);
    int size() const { return m_entries.size(); }

private:
    struct Entry {
        const Toolkit* toolkit = nullptr;
        QPointer<QObject> object;
        int kind = 0;
        bool hasIndex = false;
        QPersistentModelIndex index;
        void* pointer = nullptr;
        int number = -1;
        /// What it was, for messages.
        QString typeName;
    };
    /// What makes two elements the same one.
    struct Key {
        QObject* object;
        int kind;
        QPersistentModelIndex index;
        void* pointer;
        int number;

        bool operator==(const Key& other) const {
            return object == other.object && kind == other.kind && pointer == other.pointer &&
                   number == other.number && index == other.index;
        }
        friend uint qHash(const Key& key, uint seed) {
            return qHash(key.object, seed) ^ qHash(key.kind) ^ qHash(key.pointer) ^
                   qHash(key.number) ^ qHash(key.index);
        }
    };

    static Element elementOf(const Entry& entry);
    void dropDead();

    QHash<quint64, Entry> m_entries;
    QHash<Key, quint64> m_handles;
    quint64 m_last = 0;
    /// How many entries there may be before dead ones are dropped.
    int m_limit = 1024;
};

}  // namespace Tamrix::Agent
