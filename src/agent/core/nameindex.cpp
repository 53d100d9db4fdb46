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
    const Toolkit::Hint hint = toolkit->hint(element);
    entry.values[ByHint] = nameableText(hint.value);
    entry.hintName = hint.name;
    const Element field = toolkit->related(element, Toolkit::Relation::LabelledField);
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
        const Entry& entry = m_entries[static_cast<size_t>(label.value())];
        if (field >= 0 &&
            label.key().toolkit->related(label.key(), Toolkit::Relation::Label) == entry.element)
            m_entries[static_cast<size_t>(field)].values[ByLabel] = entry.values[ByText];
    }
}

void NameIndex::makeGroups() {
    m_groups.reserve(2 * static_cast<int>(m_entries.size()));
    for (size_t index = 0; index < m_entries.size(); ++index) {
        Entry& entry = m_entries[index];
        for (int base = 0; base < baseCount; ++base) {
            if (base != ByType && entry.values[base].isEmpty())
                continue;
            Group& group = m_groups[keyOf(entry, base)];
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

NameIndex::Key NameIndex::keyOf(const Entry& entry, int base) {
    return {entry.type, base, entry.values[base], base == ByHint ? entry.hintName : nullptr};
}

int NameIndex::Rivals::sum(const int (&counts)[choiceCount]) const {
    int sum = 0;
    for (int choice = 0; choice < choiceCount; ++choice)
        sum += choices[choice] ? counts[choice] : 0;
    return sum;
}

int NameIndex::Rivals::sum(const QHash<int, int> (&counts)[choiceCount], int key) const {
    int sum = 0;
    for (int choice = 0; choice < choiceCount; ++choice)
        sum += choices[choice] ? counts[choice].value(key) : 0;
    return sum;
}

/// By the rules of ObjectFinder: visible objects go first, others are matches when there are none
/// of these; a name that says `visible` means all of which this is true.
NameIndex::Rivals NameIndex::rivalsOf(const Entry& entry, const Group& group) {
    Rivals rivals;
    rivals.choices[entry.choice] = true;
    const bool isAlone = group.counts[entry.choice] ==
                         group.counts[Visible] + group.counts[Hidden] + group.counts[Internal];
    if (entry.choice == Visible || isAlone)
        return rivals;
    if (entry.choice == Hidden) {
        const bool isHidden = group.counts[Visible] + group.counts[Internal] > 0;
        rivals.visible = isHidden ? "false" : nullptr;
        return rivals;
    }
    rivals.visible = "true";
    rivals.choices[Visible] = true;
    return rivals;
}

int NameIndex::occurrenceOf(const Entry& entry, Base base, const Rivals& rivals,
                            bool throughWindows) {
    const auto place = [base](const Entry& each) {
        const QPoint point = each.element.toolkit->globalBounds(each.element).topLeft();
        return std::make_tuple(each.root, point.y(), point.x());
    };
    Group* const group = &m_groups[keyOf(entry, base)];
    const bool isOfOneChoice = !(rivals.choices[Visible] && rivals.choices[Internal]);
    if (isOfOneChoice) {
        const QHash<int, int>& inRoot = divide(group, base).inRoot[entry.choice];
        int occurrence = entry.rank[base];
        for (auto it = inRoot.cbegin(); throughWindows && it != inRoot.cend(); ++it)
            occurrence += it.key() < entry.root ? it.value() : 0;
        return occurrence;
    }
    // Of two choices together: few entries are of the toolkit's inner workings.
    int occurrence = 1;
    const auto own = place(entry);
    for (int index = group->head; index >= 0; index = at(index).next[base]) {
        const Entry& other = at(index);
        if (&other == &entry || !rivals.choices[other.choice] ||
            (!throughWindows && other.root != entry.root))
            continue;
        const auto others = place(other);
        occurrence += others < own || (others == own && &other < &entry) ? 1 : 0;
    }
    return occurrence;
}

QString NameIndex::nameOf(const Entry& entry, Base base, const Words& words) const {
    QString name;
    constexpr int usualSize = 128;
    name.reserve(usualSize);
    const auto append = [&name](const char* property, const QString& value) {
        name += name.isEmpty() ? QLatin1Char('{') : QLatin1Char(' ');
        name += QLatin1String(property);
        name += QLatin1Char('=');
        name += value;
    };
    const auto appendHint = [&](const char* property) {
        if (base == ByHint && qstrcmp(entry.hintName, property) == 0)
            append(property, quoted(entry.values[base]));
    };
    // In the order of the properties' names.
    if (base == ByLabel)
        append("buddy", quoted(entry.values[base]));
    if (!words.container.isEmpty())
        append("container", words.container);
    appendHint("iconName");
    if (base == ByName)
        append("name", quoted(entry.values[base]));
    if (words.occurrence > 1)
        append("occurrence", quoted(QString::number(words.occurrence)));
    if (base == ByText)
        append("text", quoted(entry.values[base]));
    appendHint("toolTip");
    append("type", quoted(m_typeNames[entry.type]));
    if (words.visible)
        append("visible", quoted(QString::fromLatin1(words.visible)));
    if (words.withWindow)
        append("window", at(entry.rootEntry).name);
    name += QLatin1Char('}');
    name.squeeze();
    return name;
}

QString NameIndex::makeName(Entry* entry) {
    const bool isRoot = &m_entries[static_cast<size_t>(entry->rootEntry)] == entry;
    QVector<Base> bases;
    for (const Base base : {ByName, ByText, ByLabel, ByHint}) {
        if (!entry->values[base].isEmpty())
            bases.append(base);
    }
    bases.insert(isRoot && !bases.isEmpty() && bases.first() != ByName ? 0 : bases.size(), ByType);
    // By its type alone an object is named only if it says nothing else.
    if (!isRoot && bases.size() > 1)
        bases.removeLast();

    const auto groupOf = [&](Base base) { return &m_groups[keyOf(*entry, base)]; };
    for (const Base base : bases) {
        const Rivals rivals = rivalsOf(*entry, *groupOf(base));
        if (!rivals.visible && rivals.sum(groupOf(base)->counts) == 1)
            return nameOf(*entry, base, Words());
    }
    const bool hasWindow = !isRoot && !entry->element.toolkit->window(entry->element).isNull() &&
                           entry->element.toolkit->window(entry->element) ==
                               m_entries[static_cast<size_t>(entry->rootEntry)].element;
    if (hasWindow)
        realName(entry->rootEntry);
    Words words;
    for (const Base base : bases) {
        Group* const group = groupOf(base);
        const Rivals rivals = rivalsOf(*entry, *group);
        words.visible = rivals.visible;
        words.withWindow = rivals.sum(group->counts) > 1;
        if (!words.withWindow)
            return nameOf(*entry, base, words);
        if (hasWindow && rivals.sum(divide(group, base).inRoot, entry->root) == 1)
            return nameOf(*entry, base, words);
    }
    words.withWindow = false;
    if (entry->container >= 0 && entry->container != entry->rootEntry) {
        // Only a container of a plain name makes a name that people understand.
        words.container = realName(entry->container);
        const bool isPlain =
            words.container.count('{') == 1 && !words.container.contains(" occurrence=");
        for (const Base base : bases) {
            Group* const group = groupOf(base);
            const Rivals rivals = rivalsOf(*entry, *group);
            words.visible = rivals.visible;
            if (isPlain && rivals.sum(divide(group, base).inContainer, entry->container) == 1)
                return nameOf(*entry, base, words);
        }
        words.container.clear();
    }
    const Base base = bases.first();
    Group* const group = groupOf(base);
    const Rivals rivals = rivalsOf(*entry, *group);
    const bool isInSeveral =
        rivals.sum(group->counts) > rivals.sum(divide(group, base).inRoot, entry->root);
    words.visible = rivals.visible;
    words.withWindow = isInSeveral && hasWindow;
    words.occurrence = occurrenceOf(*entry, base, rivals, isInSeveral && !hasWindow);
    return nameOf(*entry, base, words);
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

QString NameIndex::label(int index) const {
    const Entry& entry = at(index);
    return entry.values[ByLabel].isEmpty() ? entry.values[ByHint] : entry.values[ByLabel];
}

QStringList NameIndex::names(const Element& element) {
    QStringList names;
    const int index = indexOf(element);
    if (index < 0)
        return names;
    names.append(realName(index));
    const Entry& entry = at(index);
    QVector<Base> bases;
    for (const Base base : {ByName, ByText, ByLabel, ByHint}) {
        if (!entry.values[base].isEmpty())
            bases.append(base);
    }
    // 1. By one of its own properties.
    for (const Base base : bases)
        names.append(nameOf(entry, base, Words()));
    // 2. By where it is, too.
    const bool isRoot = entry.rootEntry == index;
    if (!isRoot) {
        realName(entry.rootEntry);
        Words withWindow;
        withWindow.withWindow = true;
        bases.append(ByType);
        for (const Base base : qAsConst(bases))
            names.append(nameOf(entry, base, withWindow));
    }
    if (entry.container >= 0 && entry.container != entry.rootEntry) {
        Words inContainer;
        inContainer.container = realName(entry.container);
        names.append(nameOf(entry, bases.first(), inContainer));
        names.append(nameOf(entry, ByType, inContainer));
    }
    // 3. By its type and the order on the screen.
    const Rivals rivals = rivalsOf(entry, m_groups[keyOf(entry, ByType)]);
    Words counted;
    counted.visible = rivals.visible;
    counted.occurrence = occurrenceOf(entry, ByType, rivals, true);
    names.append(nameOf(entry, ByType, counted));
    names.removeDuplicates();
    return names;
}

QString NameIndex::realName(const Element& element) {
    return realName(indexOf(element));
}

}  // namespace Tamrix::Agent
