#include "agent/recorder/recordhandlers.h"

#include "agent/core/session.h"
#include "agent/recorder/recorder.h"

namespace Tamrix::Agent {

void registerRecordHandlers(Session* session) {
    auto* const recorder = new Recorder(session);
    session->setBodyHandler<Wire::Record>(
        Wire::MessageType::Record,
        [recorder](const Wire::Record& request, const ResponderPtr& responder) {
            recorder->follow(request);
            responder->reply();
        });
}

}  // namespace Tamrix::Agent
