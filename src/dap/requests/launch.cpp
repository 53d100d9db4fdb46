// "launch" and "restart": a run starts.

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<Nothing> done(const Outcome<>& outcome) {
    if (!outcome)
        return fail(outcome.error());
    return Nothing();
}

Outcome<Nothing> launch(Session& session, const LaunchArguments& arguments) {
    return done(session.launch(arguments));
}

Outcome<Nothing> restart(Session& session, const RestartArguments& arguments) {
    return done(session.restart(arguments.arguments));
}

}  // namespace

RequestKind launchRequest() {
    return makeRequest("launch", launch);
}

RequestKind restartRequest() {
    return makeRequest("restart", restart);
}

}  // namespace Tamrix::Dap
