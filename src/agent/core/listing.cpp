#include "agent/core/listing.h"

#include "agent/core/shownobjects.h"

namespace Tamrix::Agent {

Wire::ObjectListing makeListing() {
    NameIndex index;
    Wire::ObjectListing listing;
    listing.types = index.typeNames();
    listing.objects.reserve(index.count());
    walkShownObjects(index, [&](int number, int depth) {
        const Element& element = index.element(number);
        const Toolkit* const toolkit = element.toolkit;
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
        return Telling::Told;
    });
    return listing;
}

}  // namespace Tamrix::Agent
