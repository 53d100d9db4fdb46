#include "agent/core/session.h"
#include "agent/core/toolkitlibraries.h"
#include "agent/qtquick/quicktoolkit.h"

void tamrixAgentAddQuick(Tamrix::Agent::Session* session) {
    session->addToolkit(std::make_unique<Tamrix::Agent::QuickToolkit>());
}
