#pragma once

#include <QHash>
#include <QModelIndex>
#include <QObject>

namespace Tamrix::Agent {

class Toolkit;

/// One thing of the application that a tester can name: a QObject, or an item that is none, below
/// the object that holds it. Plain data that owns nothing: it is good within one turn of the event
/// loop. HandleTable keeps elements for longer.
struct Element {
    /// What knows this kind of element; null for no element. Lives as long as the agent.
    const Toolkit* toolkit = nullptr;
    /// The object itself, or the view, scene or bar that holds the item.
    QObject* object = nullptr;
    /// 0 for the object itself, else the toolkit's number for a kind of item.
    int kind = 0;
    /// The item: an index of the view's model...
    QModelIndex index;
    /// ...or the toolkit's own pointer (a graphics item)...
    void* pointer = nullptr;
    /// ...or a number (a tab).
    int number = -1;

    bool isNull() const { return toolkit == nullptr; }
    bool isItem() const { return kind != 0; }
    bool operator==(const Element& other) const {
        return object == other.object && kind == other.kind && index == other.index &&
               pointer == other.pointer && number == other.number;
    }
    friend uint qHash(const Element& element, uint seed) {
        return ::qHash(element.object, seed) ^ ::qHash(element.pointer, seed) ^
               static_cast<uint>(element.kind + 64 * element.number + 4096 * element.index.row() +
                                 1048576 * element.index.column()) ^
               static_cast<uint>(element.index.internalId());
    }
    bool operator!=(const Element& other) const { return !(*this == other); }
};

}  // namespace Tamrix::Agent

Q_DECLARE_TYPEINFO(Tamrix::Agent::Element, Q_MOVABLE_TYPE);
