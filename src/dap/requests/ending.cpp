// "terminate" and "disconnect": the run ends, and the session.

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<Nothing> terminate(Session& session, const Nothing&) {
    session.terminate();
    return Nothing();
}

Outcome<Nothing> disconnect(Session& session, const DisconnectArguments&) {
    // A run that this server started goes with it, whatever the client says.
    session.end();
    return Nothing();
}

}  // namespace

RequestKind terminateRequest() {
    return makeRequest("terminate", terminate);
}

RequestKind disconnectRequest() {
    return makeRequest("disconnect", disconnect);
}

}  // namespace Tamrix::Dap
