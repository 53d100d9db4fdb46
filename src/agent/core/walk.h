#pragma once

#include <QVector>
#include <algorithm>

#include "agent/core/element.h"
#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

/// Calls `visit(element)` for the root and all below it, parents first, in order of creation.
template <typename Visit>
void walkTree(const Element& root, bool withItems, Visit visit) {
    QVector<Element> left{root};
    while (!left.isEmpty()) {
        const Element element = left.takeLast();
        visit(element);
        const int size = left.size();
        element.toolkit->children(element, withItems, &left);
        std::reverse(left.begin() + size, left.end());
    }
}

/// Appends the children as testers see them: in place of one of the toolkit's inner workings come
/// its children. Plain objects without any part in the picture are left out unless asked for.
void appendShownChildren(const Element& element, bool withPlainObjects, QVector<Element>* elements);

}  // namespace Tamrix::Agent
