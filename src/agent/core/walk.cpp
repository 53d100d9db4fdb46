#include "agent/core/walk.h"

namespace Tamrix::Agent {

void appendShownChildren(const Element& element, bool withPlainObjects,
                         QVector<Element>* elements) {
    QVector<Element> children;
    element.toolkit->children(element, true, &children);
    for (const Element& child : children) {
        if (child.toolkit->isInternal(child))
            appendShownChildren(child, withPlainObjects, elements);
        else if (withPlainObjects || !child.toolkit->isPlain(child))
            elements->append(child);
    }
}

}  // namespace Tamrix::Agent
