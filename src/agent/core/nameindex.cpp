#include "agent/core/nameindex.h"

#include <QMap>
#include <algorithm>
#include <tuple>
#include <utility>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

namespace {

/// A longer text, or one of several lines, makes no good name.
constexpr int longestText = 60;

QString quoted(QString value) {
    value.replace('\\', QLatin1String("\\\\")).replace('\'', QLatin1String("\\'"));
    return '\'' + value + '\'';
}

QString nameableText(const QString& text) {
    return text.size() <= longestText && !text.contains('\n') ? text : QString();
}

}  // namespace

NameIndex::NameIndex() {
    const QVector<Element> roots = Session::self()->topLevels();
    struct Pending {
        Element element;
        int container;
    };
    QVector<Element> children;
    constexpr size_t usualCount = 1024;
    m_entries.reserve(usualCount);
    for (int root = 0; root < roots.size(); ++root) {
        std::vector<Pending> left{{roots[root], -1}};
        while (!left.empty()) {
            const Pending next = left.back();
            left.pop_back();
            add(next.element, next.container, root);
            // What hangs in one of the toolkit's inner workings has its container around that.
            const bool isInternal = m_entries.back().choice == Internal;
            const int container = isInternal || next.element.toolkit->isInternal(next.element)
                                      ? next.container
                                      : static_cast<int>(m_entries.size()) - 1;
            children.clear();
            next.element.toolkit->children(next.element, true, &children);
            for (auto child = children.crbegin(); child != children.crend(); ++child)
                left.push_back({*child, container});
        }
    }
    addLabels();
    makeGroups();
}

void NameIndex::add(const Element& element, int container, int root) {
    const Toolkit* const toolkit = element.toolkit;
    Entry entry;
    entry.element = element;
    entry.container = container;
    entry.root = root;
    const int index = static_cast<int>(m_entries.size());
    entry.rootEntry =
        !m_entries.empty() && m_entries.back().root == root ? m_entries.back().rootEntry : index;
    const bool isVisible = toolkit->isVisible(element);
    entry.choice = !isVisible ? Hidden : toolkit->isInternal(element) ? Internal : Visible;

    // Classes are few: their names are made once.
    const QMetaObject* const metaObject = element.isItem() ? nullptr : element.object->metaObject();
    const auto known = m_classes.constFind(metaObject);
    if (metaObject && known != m_classes.cend()) {
        entry.type = *known;
    } else {
        const QString type = toolkit->typeName(element);
        const auto place = m_types.constFind(type);
        entry.type = place != m_types.cend() ? *place : m_typeNames.size();
        if (entry.type == m_typeNames.size()) {
            m_types.insert(type, entry.type);
            m_typeNames.append(type);
        }
        if (metaObject)
            m_classes.insert(metaObject, entry.type);
    }
    entry.values[ByName] = toolkit->name(element);
    if (toolkit->isTextLasting(element))
        entry.values[ByText] = nameableText(toolkit->text(element));
    const Element field = toolkit->labelledField(element);
    if (!field.isNull())
        m_labels.insert(field, index);
    m_places.insert(element, index);
    m_entries.push_back(std::move(entry));
}

void NameIndex::addLabels() {
    for (auto label = m_labels.cbegin(); label != m_labels.cend(); ++label) {
        const int field = m_places.value(label.key(), -1);
        if (field >= 0 && label.key().toolkit->buddy(label.key()) ==
                              m_entries[static_cast<size_t>(label.value())].element)
            m_entries[static_cast<size_t>(field)].values[ByLabel] =
                m_entries[static_cast<size_t>(label.value())].values[ByText];
    }
}

void NameIndex::makeGroups() {
    m_groups.reserve(2 * static_cast<int>(m_entries.size()));
    for (size_t index = 0; index < m_entries.size(); ++index) {
        Entry& entry = m_entries[index];
        for (int base = 0; base < baseCount; ++base) {
            if (base != ByType && entry.values[base].isEmpty())
                continue;
            Group& group = m_groups[Key{entry.type, base, entry.values[base]}];
            entry.next[base] = group.head;
            group.head = static_cast<int>(index);
            ++group.counts[entry.choice];
        }
    }
}

void NameIndex::divide(Group* group, int base) {
    if (group->isDivided)
        return;
    group->isDivided = true;
    struct Member {
        int index;
        int root;
        QPoint place;
    };
    std::vector<Member> members[choiceCount];
    for (int index = group->head; index >= 0;
         index = m_entries[static_cast<size_t>(index)].next[base]) {
        const Entry& entry = m_entries[static_cast<size_t>(index)];
        ++group->inRoot[entry.choice][entry.root];
        ++group->inContainer[entry.choice][entry.container];
        const QPoint place = entry.element.toolkit->globalBounds(entry.element).topLeft();
        members[entry.choice].push_back({index, entry.root, place});
    }
    for (std::vector<Member>& each : members) {
        std::sort(each.begin(), each.end(), [](const Member& a, const Member& b) {
            return std::make_tuple(a.root, a.place.y(), a.place.x(), a.index) <
                   std::make_tuple(b.root, b.place.y(), b.place.x(), b.index);
        });
        int rank = 0;
        int root = -1;
        for (const Member& member : each) {
            rank = member.root == root ? rank + 1 : 1;
            root = member.root;
            m_entries[static_cast<size_t>(member.index)].rank[base] = rank;
        }
    }
}

QString NameIndex::nameOf(const Entry& entry, Base base, const QString& container, bool withWindow,
                          int occurrence, bool saysHidden) const {
    // In the order of their properties.
    static const char* const s_names[] = {"name", "text", "buddy"};
    QMap<QString, QString> parts;
    parts.insert(QStringLiteral("type"), quoted(m_typeNames[entry.type]));
    if (base != ByType)
        parts.insert(QString::fromLatin1(s_names[base]), quoted(entry.values[base]));
    if (!container.isEmpty())
        parts.insert(QStringLiteral("container"), container);
    if (withWindow)
        parts.insert(QStringLiteral("window"),
                     m_entries[static_cast<size_t>(entry.rootEntry)].name);
    if (occurrence > 1)
        parts.insert(QStringLiteral("occurrence"), quoted(QString::number(occurrence)));
    if (saysHidden)
        parts.insert(QStringLiteral("visible"), quoted(QStringLiteral("false")));
    QString name;
    for (auto part = parts.cbegin(); part != parts.cend(); ++part)
        name += (name.isEmpty() ? '{' : ' ') + part.key() + '=' + part.value();
    return name + '}';
}

QString NameIndex::makeName(Entry* entry) {
    const bool isRoot = &m_entries[static_cast<size_t>(entry->rootEntry)] == entry;
    QVector<Base> bases;
    for (const Base base : {ByName, ByText, ByLabel}) {
        if (!entry->values[base].isEmpty())
            bases.append(base);
    }
    bases.insert(isRoot && !bases.isEmpty() && bases.first() != ByName ? 0 : bases.size(), ByType);
    // By its type alone an object is named only if it says nothing else.
    if (!isRoot && bases.size() > 1)
        bases.removeLast();

    const auto groupOf = [&](Base base) {
        return &m_groups[Key{entry->type, base, entry->values[base]}];
    };
    // Matches of a better choice hide this one unless the name says that it is hidden.
    const auto rivals = [&](const Group* group) {
        return entry->choice == Visible ? 0 : group->counts[Visible] + group->counts[Internal];
    };
    for (const Base base : bases) {
        const Group* const group = groupOf(base);
        if (group->counts[entry->choice] == 1 && rivals(group) == 0)
            return nameOf(*entry, base, QString(), false, 1, false);
    }
    const bool hasWindow = !isRoot && !entry->element.toolkit->window(entry->element).isNull() &&
                           entry->element.toolkit->window(entry->element) ==
                               m_entries[static_cast<size_t>(entry->rootEntry)].element;
    if (hasWindow)
        realName(entry->rootEntry);
    for (const Base base : bases) {
        Group* const group = groupOf(base);
        divide(group, base);
        const bool saysHidden = rivals(group) > 0;
        if (group->counts[entry->choice] == 1)
            return nameOf(*entry, base, QString(), false, 1, saysHidden);
        if (hasWindow && group->inRoot[entry->choice].value(entry->root) == 1)
            return nameOf(*entry, base, QString(), true, 1, saysHidden);
    }
    if (entry->container >= 0 && entry->container != entry->rootEntry) {
        // Only a container of a plain name makes a name that people understand.
        const QString container = realName(entry->container);
        const bool isPlain = container.count('{') == 1 && !container.contains(" occurrence=");
        for (const Base base : bases) {
            Group* const group = groupOf(base);
            if (isPlain && group->inContainer[entry->choice].value(entry->container) == 1)
                return nameOf(*entry, base, container, false, 1, rivals(group) > 0);
        }
    }
    const Base base = bases.first();
    Group* const group = groupOf(base);
    const bool isInSeveral = group->inRoot[entry->choice].size() > 1;
    int occurrence = entry->rank[base];
    if (isInSeveral && !hasWindow) {
        // Counted through all windows.
        for (auto it = group->inRoot[entry->choice].cbegin();
             it != group->inRoot[entry->choice].cend(); ++it)
            occurrence += it.key() < entry->root ? it.value() : 0;
    }
    return nameOf(*entry, base, QString(), isInSeveral && hasWindow, occurrence, rivals(group) > 0);
}

QString NameIndex::realName(int index) {
    if (index < 0)
        return {};
    Entry& entry = m_entries[static_cast<size_t>(index)];
    if (entry.name.isEmpty())
        entry.name = makeName(&entry);
    return entry.name;
}

QString NameIndex::realName(const Element& element) {
    return realName(indexOf(element));
}

}  // namespace Tamrix::Agent
