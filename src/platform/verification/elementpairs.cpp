#include "platform/verification/elementpairs.h"

#include <QHash>
#include <QQueue>

namespace Tamrix {

namespace {

using Elements = std::vector<ListedElement>;

void list(const VisualElement& element, int parent, Elements* elements) {
    const int index = static_cast<int>(elements->size());
    elements->push_back({&element, parent, -1});
    for (const VisualElement& child : element.children)
        list(child, index, elements);
}

/// For each element the indexes of its children.
std::vector<std::vector<int>> childrenOf(const Elements& elements) {
    std::vector<std::vector<int>> children(elements.size());
    for (std::size_t index = 1; index < elements.size(); ++index)
        children[elements[index].parent].push_back(static_cast<int>(index));
    return children;
}

using Key = QString (*)(const ListedElement& element, const Elements& all);

QString typeAndName(const ListedElement& element, const Elements& /*all*/) {
    return element.element->type + QChar(0) + element.element->name;
}

QString withText(const ListedElement& element, const Elements& all) {
    return typeAndName(element, all) + QChar(0) + element.element->text;
}

QString withTextAndPlace(const ListedElement& element, const Elements& all) {
    const QRect place = element.placeInParent(all);
    return QStringLiteral("%1,%2,%3,%4,")
               .arg(QString::number(place.x()), QString::number(place.y()),
                    QString::number(place.width()), QString::number(place.height())) +
           withText(element, all);
}

/// What two elements need to have alike to be the same, the surest first.
constexpr Key keys[] = {withTextAndPlace, withText, typeAndName};

void matchBy(Key key, const std::vector<int>& expectedChildren,
             const std::vector<int>& observedChildren, Elements& expected, Elements& observed) {
    QHash<QString, QQueue<int>> free;
    for (const int child : observedChildren) {
        if (observed[child].partner < 0)
            free[key(observed[child], observed)].enqueue(child);
    }
    for (const int child : expectedChildren) {
        if (expected[child].partner >= 0)
            continue;
        const auto found = free.find(key(expected[child], expected));
        if (found == free.end() || found->isEmpty())
            continue;
        const int partner = found->dequeue();
        expected[child].partner = partner;
        observed[partner].partner = child;
    }
}

}  // namespace

QRect ListedElement::placeInParent(const Elements& all) const {
    const QPoint origin =
        parent < 0 ? element->place.topLeft() : all[parent].element->place.topLeft();
    return element->place.translated(-origin);
}

ElementPairs::ElementPairs(const VisualElement& expectedRoot, const VisualElement& observedRoot) {
    list(expectedRoot, -1, &expected);
    list(observedRoot, -1, &observed);
    expected.front().partner = 0;
    observed.front().partner = 0;
    const auto expectedChildren = childrenOf(expected);
    const auto observedChildren = childrenOf(observed);
    // Parents come first, so each has its partner when its children are looked at.
    for (std::size_t index = 0; index < expected.size(); ++index) {
        const int partner = expected[index].partner;
        if (partner < 0)
            continue;
        for (const Key key : keys)
            matchBy(key, expectedChildren[index], observedChildren[partner], expected, observed);
    }
}

}  // namespace Tamrix
