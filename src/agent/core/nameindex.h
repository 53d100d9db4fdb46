#pragma once

#include <QHash>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QVector>
#include <deque>
#include <vector>

#include "agent/core/element.h"

namespace Tamrix::Agent {

/// Makes real names: names that find exactly one object, as short as they can be. Looks at all
/// objects once, when it is made, and is good as long as nothing changes: one serves the names of
/// a whole tree.
///
/// A name says the type and, in this order, the first of these that an object has: its name, its
/// text if a person does not type it, the label that names it, the tool tip or icon of what has no
/// text. If that does not suffice, it says the window too, or the container, and at last the
/// occurrence. Windows are told apart by type
/// before their titles, which change. What the rules of ObjectFinder find first needs no more words
/// than that.
class NameIndex {
public:
    NameIndex();

    // The objects by number, parents first, children in order of creation.
    int count() const { return static_cast<int>(m_entries.size()); }
    const Element& element(int index) const { return at(index).element; }
    /// -1 for a top-level object.
    int parent(int index) const { return at(index).parent; }
    bool isInternal(int index) const { return at(index).isInternal; }
    bool isVisible(int index) const { return at(index).choice != Hidden; }
    /// The number of the type, an index into typeNames().
    int type(int index) const { return at(index).type; }
    const QStringList& typeNames() const { return m_typeNames; }
    QString text(int index) const;
    /// The label that names it, else the tool tip or icon of what has no text; often empty.
    QString label(int index) const;

    /// A name that finds the element; empty for an element that is in no window and no tree.
    QString realName(const Element& element);
    /// Names that may find the element, that of realName() first, then the shorter before the
    /// longer ones; other objects may have some of them, too.
    QStringList names(const Element& element);
    /// The element's place among all, -1 for none; as the other function wants it.
    int indexOf(const Element& element);
    QString realName(int index);

private:
    /// What a name says beside the type.
    enum Base { ByName, ByText, ByLabel, ByHint, ByType };
    static constexpr int baseCount = 5;
    /// By which a look-up prefers some matches to others.
    enum Choice { Visible, Hidden, Internal };
    static constexpr int choiceCount = 3;

    struct Entry {
        Element element;
        int type = 0;
        Choice choice = Visible;
        bool isInternal = false;
        int parent = -1;
        /// The number of the window, and the entries of window and container.
        int root = 0;
        int rootEntry = -1;
        int container = -1;
        QString values[baseCount];
        /// The property whose value the hint is.
        const char* hintName = nullptr;
        /// The next one of which the same name is true, for each base.
        int next[baseCount] = {-1, -1, -1, -1, -1};
        /// Place among these within the window, from 1.
        int rank[baseCount] = {0, 0, 0, 0, 0};
        QString name;
    };
    struct Key {
        int type;
        int base;
        QString value;
        /// One of few literals; null for other bases.
        const char* hintName;

        bool operator==(const Key& other) const {
            return type == other.type && base == other.base && value == other.value &&
                   hintName == other.hintName;
        }
        friend uint qHash(const Key& key, uint seed) {
            return qHash(key.value, seed) + static_cast<uint>(key.type) * 31U +
                   static_cast<uint>(key.base);
        }
    };
    /// Those that one and the same name is true of.
    struct Group {
        int head = -1;
        int counts[choiceCount] = {0, 0, 0};
        /// Index into m_divisions, -1 before it is needed: most groups have one member.
        int division = -1;
    };
    /// How many of a group there are below each root and in each container.
    struct Division {
        QHash<int, int> inRoot[choiceCount];
        QHash<int, int> inContainer[choiceCount];
    };

    const Entry& at(int index) const { return m_entries[static_cast<size_t>(index)]; }
    void add(const Element& element, int parent, int container, int root);
    void addLabels();
    void makeGroups();
    static Key keyOf(const Entry& entry, int base);
    const Division& divide(Group* group, int base);
    /// Among which a look-up picks when it is after the entry, by a name that is true of the group.
    struct Rivals {
        /// What the name says of `visible`: "true", "false", or nothing.
        const char* visible = nullptr;
        /// The choices that count.
        bool choices[choiceCount] = {};

        int sum(const int (&counts)[choiceCount]) const;
        int sum(const QHash<int, int> (&counts)[choiceCount], int key) const;
    };
    static Rivals rivalsOf(const Entry& entry, const Group& group);
    int occurrenceOf(const Entry& entry, Base base, const Rivals& rivals, bool throughWindows);
    QString makeName(Entry* entry);
    /// What a name says beside type and base.
    struct Words {
        QString container;
        bool withWindow = false;
        int occurrence = 1;
        const char* visible = nullptr;
    };
    QString nameOf(const Entry& entry, Base base, const Words& words) const;

    std::vector<Entry> m_entries;
    /// Made when it is first needed.
    QHash<Element, int> m_places;
    QHash<const QMetaObject*, int> m_classes;
    QHash<QString, int> m_types;
    QStringList m_typeNames;
    /// Fields with the labels that name them.
    QHash<Element, int> m_labels;
    QHash<Key, Group> m_groups;
    std::deque<Division> m_divisions;
};

}  // namespace Tamrix::Agent
