#include "agent/core/survey.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/walk.h"

namespace Tamrix::Agent {

QVector<Element> nativeRoots() {
    QVector<Element> roots;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        const Element root = Session::self()->element(window);
        if (!root.isNull())
            roots.append(root);
    }
    return roots;
}

const QVector<Element>& Survey::nativeRoots() {
    if (!m_knowsNativeRoots)
        m_nativeRoots = Agent::nativeRoots();
    m_knowsNativeRoots = true;
    return m_nativeRoots;
}

const QVector<Element>& Survey::topLevels() {
    if (!m_knowsTopLevels)
        m_topLevels = Session::self()->topLevels();
    m_knowsTopLevels = true;
    return m_topLevels;
}

void Survey::fill(Tree* tree, const Element& root) {
    // An element, or with -1 the end of what is below the one at a place.
    struct Step {
        Element element;
        int ended = -1;
    };
    std::vector<Step> left{{root}};
    QVector<Element> children;
    const QMetaObject* lastClass = nullptr;
    std::vector<int>* lastPlaces = nullptr;
    while (!left.empty()) {
        const Step step = left.back();
        left.pop_back();
        const auto place = static_cast<int>(tree->elements.size());
        if (step.ended >= 0) {
            tree->ends[static_cast<size_t>(step.ended)] = place;
            continue;
        }
        const Element& element = step.element;
        const QMetaObject* const metaObject =
            element.isItem() ? nullptr : element.object->metaObject();
        if (!lastPlaces || metaObject != lastClass)
            lastPlaces = &tree->places[metaObject];
        lastClass = metaObject;
        lastPlaces->push_back(place);
        tree->elements.push_back(element);
        tree->ends.push_back(place + 1);
        children.clear();
        element.toolkit->children(element, tree->withItems, &children);
        if (children.isEmpty())
            continue;
        left.push_back({{}, place});
        for (auto child = children.crbegin(); child != children.crend(); ++child)
            left.push_back({*child});
    }
}

Survey::Place Survey::placeOf(const Element& root, bool withItems) {
    for (const Tree& tree : m_trees) {
        if (withItems && !tree.withItems)
            continue;
        const auto found = std::find(tree.elements.cbegin(), tree.elements.cend(), root);
        if (found != tree.elements.cend())
            return {&tree, static_cast<int>(found - tree.elements.cbegin())};
    }
    Tree& tree = m_trees.emplace_back();
    tree.withItems = withItems;
    fill(&tree, root);
    return {&tree, 0};
}

void Survey::walk(const Element& root, bool withItems, const Test& mayVisit, const Visit& visit) {
    const auto [tree, first] = placeOf(root, withItems);
    const int end = tree->ends[static_cast<size_t>(first)];
    const auto elementAt = [tree = tree](int place) {
        return tree->elements[static_cast<size_t>(place)];
    };
    std::vector<int> places;
    for (const auto& [metaObject, ofClass] : tree->places) {
        if (metaObject && !mayVisit(elementAt(ofClass.front())))
            continue;
        const auto from = std::lower_bound(ofClass.cbegin(), ofClass.cend(), first);
        const auto to = std::lower_bound(from, ofClass.cend(), end);
        const auto middle = static_cast<std::ptrdiff_t>(places.size());
        places.insert(places.end(), from, to);
        std::inplace_merge(places.begin(), places.begin() + middle, places.end());
    }
    for (const int place : places)
        visit(elementAt(place));
}

}  // namespace Tamrix::Agent
