#include "agent/core/handletable.h"

#include <algorithm>

#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

Element HandleTable::elementOf(const Entry& entry) {
    Element element;
    if (!entry.object || (entry.hasIndex && !entry.index.isValid()))
        return element;
    element.toolkit = entry.toolkit;
    element.object = entry.object;
    element.kind = entry.kind;
    element.index = entry.index;
    element.pointer = entry.pointer;
    element.number = entry.number;
    if (element.isItem() && !entry.toolkit->isAlive(element))
        return Element();
    return element;
}

quint64 HandleTable::handle(const Element& element) {
    if (element.isNull())
        return 0;
    const Key key{element.object, element.kind, element.index, element.pointer, element.number};
    const quint64 known = m_handles.value(key);
    // A new object can have the address of a dead one.
    if (known != 0 && m_entries.value(known).object)
        return known;
    m_entries.remove(known);
    if (m_entries.size() >= m_limit)
        dropDead();

    Entry entry;
    entry.toolkit = element.toolkit;
    entry.object = element.object;
    entry.kind = element.kind;
    entry.hasIndex = element.index.isValid();
    entry.index = element.index;
    entry.pointer = element.pointer;
    entry.number = element.number;
    entry.typeName = element.toolkit->typeName(element);
    m_entries.insert(++m_last, entry);
    m_handles.insert(key, m_last);
    return m_last;
}

Outcome<Element> HandleTable::find(quint64 handle) {
    const auto found = m_entries.constFind(handle);
    const Element element = found == m_entries.cend() ? Element() : elementOf(*found);
    if (!element.isNull())
        return element;
    return fail(FailureKind::Gone,
                QStringLiteral("the %1 does not exist any more")
                    .arg(found == m_entries.cend() ? QStringLiteral("object") : found->typeName));
}

void HandleTable::dropDead() {
    for (auto it = m_handles.begin(); it != m_handles.end();) {
        const Entry& entry = m_entries[it.value()];
        if (entry.object && (!entry.hasIndex || entry.index.isValid())) {
            ++it;
        } else {
            m_entries.remove(it.value());
            it = m_handles.erase(it);
        }
    }
    m_limit = std::max(1024, 2 * static_cast<int>(m_entries.size()));
}

}  // namespace Tamrix::Agent
