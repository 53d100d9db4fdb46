#include "agent/core/quicklibrary.h"
#include "agent/core/session.h"
#include "agent/qtquick/quicktoolkit.h"

void tamrixAgentAddQuick(Tamrix::Agent::Session* session) {
    session->addToolkit(std::make_unique<Tamrix::Agent::QuickToolkit>());
}
