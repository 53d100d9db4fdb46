#include "agent/core/listing.h"

#include <vector>

#include "agent/core/nameindex.h"
#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

namespace {

/// Where the children of an object stand in the listing.
constexpr int nowhere = -1;

}  // namespace

Wire::ObjectListing makeListing() {
    NameIndex index;
    Wire::ObjectListing listing;
    listing.types = index.typeNames();
    listing.objects.reserve(index.count());
    std::vector<int> childDepths(static_cast<size_t>(index.count()), nowhere);
    for (int number = 0; number < index.count(); ++number) {
        const Element& element = index.element(number);
        const Toolkit* const toolkit = element.toolkit;
        const int parent = index.parent(number);
        const int depth = parent < 0 ? 0 : childDepths[static_cast<size_t>(parent)];
        if (depth == nowhere || toolkit->isPlain(element))
            continue;
        if (index.isInternal(number)) {
            // A window of the toolkit's own is left out whole.
            if (parent >= 0)
                childDepths[static_cast<size_t>(number)] = depth;
            continue;
        }
        childDepths[static_cast<size_t>(number)] = depth + 1;
        Wire::ListedObject object;
        object.depth = depth;
        object.type = index.type(number);
        object.state =
            static_cast<quint8>((index.isVisible(number) ? Wire::ListedObject::Visible : 0) |
                                (toolkit->isEnabled(element) ? Wire::ListedObject::Enabled : 0));
        object.geometry = toolkit->globalBounds(element);
        object.text = index.text(number);
        object.name = index.realName(number);
        listing.objects.append(object);
    }
    return listing;
}

}  // namespace Tamrix::Agent
