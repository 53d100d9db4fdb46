#pragma once

#include <vector>

#include "agent/core/nameindex.h"
#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

/// What becomes of an object in a tree that is told to somebody.
enum class Telling {
    Told,        ///< it is part of the tree
    PassedOver,  ///< it is not, what is below it is
    LeftOut      ///< neither is
};

/// Calls `tell(number, depth)`, which returns a Telling, for the objects of an index as testers see
/// them, parents first: plain objects without part in the picture, with what is below them, and the
/// toolkits' inner workings are left out; what hangs in inner workings stands below the object
/// around these.
template <typename Tell>
void walkShownObjects(const NameIndex& index, Tell tell) {
    constexpr int nowhere = -1;
    // Where the children of an object stand.
    std::vector<int> childDepths(static_cast<size_t>(index.count()), nowhere);
    for (int number = 0; number < index.count(); ++number) {
        const Element& element = index.element(number);
        const int parent = index.parent(number);
        const int depth = parent < 0 ? 0 : childDepths[static_cast<size_t>(parent)];
        if (depth == nowhere || element.toolkit->isPlain(element))
            continue;
        if (index.isInternal(number)) {
            // A window of the toolkit's own is left out whole.
            if (parent >= 0)
                childDepths[static_cast<size_t>(number)] = depth;
            continue;
        }
        const Telling telling = tell(number, depth);
        if (telling != Telling::LeftOut)
            childDepths[static_cast<size_t>(number)] = telling == Telling::Told ? depth + 1 : depth;
    }
}

}  // namespace Tamrix::Agent
