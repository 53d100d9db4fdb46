#pragma once

#include <QVector>
#include <deque>
#include <functional>
#include <unordered_map>
#include <vector>

#include "agent/core/element.h"

namespace Tamrix::Agent {

/// The windows that are there natively: all that can be visible. Listing every window there is
/// takes Qt as long as a walk.
QVector<Element> nativeRoots();

/// All elements as they are at one moment, for many look-ups one after another: each tree is walked
/// when it is first asked for, and by classes from then on. The tree must not change while a survey
/// is in use.
class Survey {
public:
    const QVector<Element>& nativeRoots();
    /// Those of the session.
    const QVector<Element>& topLevels();

    using Test = std::function<bool(const Element& element)>;
    using Visit = std::function<void(const Element& element)>;
    /// Calls `visit` for the root and all below it, parents first, in order of creation; of
    /// objects, only those of classes of which `mayVisit` says so for one of them. `withItems`:
    /// items must not be left out.
    void walk(const Element& root, bool withItems, const Test& mayVisit, const Visit& visit);

private:
    struct Tree {
        bool withItems = false;
        std::vector<Element> elements;
        /// Behind the last element below each.
        std::vector<int> ends;
        /// The places of each class's objects; of items, those of null.
        std::unordered_map<const QMetaObject*, std::vector<int>> places;
    };
    /// An element of a tree that was walked.
    struct Place {
        const Tree* tree = nullptr;
        int index = -1;
    };

    Place placeOf(const Element& root, bool withItems);
    static void fill(Tree* tree, const Element& element);

    /// Not moved when there are more.
    std::deque<Tree> m_trees;
    QVector<Element> m_nativeRoots;
    QVector<Element> m_topLevels;
    bool m_knowsNativeRoots = false;
    bool m_knowsTopLevels = false;
};

}  // namespace Tamrix::Agent
