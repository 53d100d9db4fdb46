#pragma once

#include "agent/core/contract/act.h"
#include "agent/core/contract/items.h"
#include "agent/core/contract/look.h"
#include "agent/core/contract/names.h"
#include "agent/core/contract/place.h"
#include "agent/core/contract/record.h"
#include "agent/core/contract/tree.h"
#include "base/export.h"

namespace Tamrix::Agent {

/// What the agent asks about the elements of one toolkit: widgets, Qt Quick items, plain objects.
/// All that is known of a toolkit's classes is behind it. Stateless; GUI thread only. Elements
/// handed in are alive and of this toolkit.
class TAMRIX_EXPORT Toolkit : public ToolkitTree,
                              public ToolkitNames,
                              public ToolkitLook,
                              public ToolkitPlace,
                              public ToolkitAct,
                              public ToolkitItems,
                              public ToolkitRecord {
public:
    virtual ~Toolkit();

    Element element(QObject* object) const override;
};

}  // namespace Tamrix::Agent
