#include "agent/qtwidgets/widgettoolkits.h"

#include "agent/core/session.h"
#include "agent/qtwidgets/graphicstoolkit.h"
#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/widgettoolkit.h"

namespace Tamrix::Agent {

void addWidgetToolkits(Session* session) {
    session->addToolkit(std::make_unique<ItemToolkit>());
    session->addToolkit(std::make_unique<GraphicsToolkit>());
    session->addToolkit(std::make_unique<WidgetToolkit>());
}

}  // namespace Tamrix::Agent
