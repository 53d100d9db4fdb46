#include "agent/core/nameindex.h"

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
    if (value.contains('\\') || value.contains('\''))
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
        int parent;
        int container;
    };
    QVector<Element> children;
    constexpr size_t usualCount = 1024;
    m_entries.reserve(usualCount);
    for (int root = 0; root < roots.size(); ++root) {
        std::vector<Pending> left{{roots[root], -1, -1}};
        while (!left.empty()) {
            const Pending next = left.back();
            left.pop_back();
            add(next.element, next.parent, next.container, root);
            // What hangs in one of the toolkit's inner workings has its container around that.
            const int index = count() - 1;
            const int container = isInternal(index) ? next.container : index;
            children.clear();
            next.element.toolkit->children(next.element, true, &children);
            for (auto child = children.crbegin(); child != children.crend(); ++child)
                left.push_back({*child, index, container});
        }
    }
    addLabels();
    makeGroups();
}

void NameIndex::add(const Element& element, int parent, int container, int root) {
    const Toolkit* const toolkit = element.toolkit;
    Entry entry;
    entry.element = element;
    entry.parent = parent;
    entry.container = container;
    entry.root = root;
    const int index = count();
    entry.rootEntry =
        !m_entries.empty() && m_entries.back().root == root ? m_entries.back().rootEntry : index;
    const bool isVisible = toolkit->isVisible(element);
    entry.isInternal = toolkit->isInternal(element);
    entry.choice = !isVisible ? Hidden : entry.isInternal ? Internal : Visible;

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
    m_entries.push_back(std::move(entry));
}

int NameIndex::indexOf(const Element& element) {
    if (m_places.isEmpty()) {
        m_places.reserve(count());
        for (int index = 0; index < count(); ++index)
            m_places.insert(at(index).element, index);
    }
    return m_places.value(element, -1);
}

void NameIndex::addLabels() {
    for (auto label = m_labels.cbegin(); label != m_labels.cend(); ++label) {
        const int field = indexOf(label.key());
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

const NameIndex::Division& NameIndex::divide(Group* group, int base) {
    if (group->division >= 0)
        return m_divisions[static_cast<size_t>(group->division)];
    group->division = static_cast<int>(m_divisions.size());
    Division& division = m_divisions.emplace_back();
    struct Member {
        int index;
        int root;
        QPoint place;
    };
    std::vector<Member> members[choiceCount];
    for (int index = group->head; index >= 0;
         index = m_entries[static_cast<size_t>(index)].next[base]) {
        const Entry& entry = m_entries[static_cast<size_t>(index)];
        ++division.inRoot[entry.choice][entry.root];
        ++division.inContainer[entry.choice][entry.container];
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
    return division;
}

QString NameIndex::nameOf(const Entry& entry, Base base, const QString& container, bool withWindow,
                          int occurrence, bool saysHidden) const {
    QString name;
    constexpr int usualSize = 128;
    name.reserve(usualSize);
    const auto append = [&name](const char* property, const QString& value) {
        name += name.isEmpty() ? QLatin1Char('{') : QLatin1Char(' ');
        name += QLatin1String(property);
        name += QLatin1Char('=');
        name += value;
    };
    // In the order of the properties' names.
    if (base == ByLabel)
        append("buddy", quoted(entry.values[base]));
    if (!container.isEmpty())
        append("container", container);
    if (base == ByName)
        append("name", quoted(entry.values[base]));
    if (occurrence > 1)
        append("occurrence", quoted(QString::number(occurrence)));
    if (base == ByText)
        append("text", quoted(entry.values[base]));
    append("type", quoted(m_typeNames[entry.type]));
    if (saysHidden)
        append("visible", quoted(QStringLiteral("false")));
    if (withWindow)
        append("window", at(entry.rootEntry).name);
    name += QLatin1Char('}');
    name.squeeze();
    return name;
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
        const Division& division = divide(group, base);
        const bool saysHidden = rivals(group) > 0;
        if (group->counts[entry->choice] == 1)
            return nameOf(*entry, base, QString(), false, 1, saysHidden);
        if (hasWindow && division.inRoot[entry->choice].value(entry->root) == 1)
            return nameOf(*entry, base, QString(), true, 1, saysHidden);
    }
    if (entry->container >= 0 && entry->container != entry->rootEntry) {
        // Only a container of a plain name makes a name that people understand.
        const QString container = realName(entry->container);
        const bool isPlain = container.count('{') == 1 && !container.contains(" occurrence=");
        for (const Base base : bases) {
            Group* const group = groupOf(base);
            if (isPlain &&
                divide(group, base).inContainer[entry->choice].value(entry->container) == 1)
                return nameOf(*entry, base, container, false, 1, rivals(group) > 0);
        }
    }
    const Base base = bases.first();
    Group* const group = groupOf(base);
    const QHash<int, int>& inRoot = divide(group, base).inRoot[entry->choice];
    const bool isInSeveral = inRoot.size() > 1;
    int occurrence = entry->rank[base];
    if (isInSeveral && !hasWindow) {
        // Counted through all windows.
        for (auto it = inRoot.cbegin(); it != inRoot.cend(); ++it)
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

QString NameIndex::text(int index) const {
    const Entry& entry = at(index);
    return entry.values[ByText].isEmpty() ? entry.element.toolkit->text(entry.element)
                                          : entry.values[ByText];
}

QString NameIndex::realName(const Element& element) {
    return realName(indexOf(element));
}

}  // namespace Tamrix::Agent
