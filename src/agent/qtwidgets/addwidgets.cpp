#include "agent/core/session.h"
#include "agent/core/toolkitlibraries.h"
#include "agent/qtwidgets/graphicstoolkit.h"
#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/layouttoolkit.h"
#include "agent/qtwidgets/widgettoolkit.h"

void tamrixAgentAddWidgets(Tamrix::Agent::Session* session) {
    using namespace Tamrix::Agent;
    session->addToolkit(std::make_unique<LayoutToolkit>());
    session->addToolkit(std::make_unique<ItemToolkit>());
    session->addToolkit(std::make_unique<GraphicsToolkit>());
    session->addToolkit(std::make_unique<WidgetToolkit>());
}
