#pragma once

#include "agent/core/objecttoolkit.h"

namespace Tamrix::Agent {

/// Layouts and styles: plain objects that nobody but the widgets knows of.
class LayoutToolkit : public ObjectToolkit {
public:
    bool knows(const QObject* object) const override;
    void topLevels(QVector<Element>* /*elements*/) const override {}
    bool isInternal(const Element& /*element*/) const override { return true; }
};

}  // namespace Tamrix::Agent
