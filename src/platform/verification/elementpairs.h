#pragma once

#include <QRect>
#include <vector>

#include "platform/verification/verificationpoint.h"

namespace Tamrix {

/// An element of a tree, in a list of all of them with parents first.
struct ListedElement {
    const VisualElement* element = nullptr;
    /// Index of the parent, -1 for the root.
    int parent = -1;
    /// Index of the element of the other tree that is the same, -1 for none.
    int partner = -1;

    /// Relative to the parent's, so that what moves takes its children along.
    QRect placeInParent(const std::vector<ListedElement>& all) const;
};

/// The elements of two trees, and which of them are the same. Both roots are. Children of the same
/// parents are matched by type, name, text and place, then by less and less of that, and among
/// equals in their order: one that comes in between does not make the others differ.
struct ElementPairs {
    /// The trees must outlive the pairs.
    ElementPairs(const VisualElement& expectedRoot, const VisualElement& observedRoot);

    std::vector<ListedElement> expected;
    std::vector<ListedElement> observed;
};

}  // namespace Tamrix
