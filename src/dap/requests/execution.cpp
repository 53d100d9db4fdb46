// "continue", "next", "stepIn", "stepOut" and "pause": how the script goes on.

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

template <typename Body, Resume how>
Outcome<Body> resume(Session& session, const ThreadArguments&) {
    if (const Outcome<> resumed = session.resume(how); !resumed)
        return fail(resumed.error());
    return Body();
}

Outcome<Nothing> pause(Session& session, const ThreadArguments&) {
    if (const Outcome<> paused = session.pause(); !paused)
        return fail(paused.error());
    return Nothing();
}

}  // namespace

RequestKind continueRequest() {
    return makeRequest("continue", resume<ContinueBody, Resume::Continue>);
}

RequestKind nextRequest() {
    return makeRequest("next", resume<Nothing, Resume::Next>);
}

RequestKind stepInRequest() {
    return makeRequest("stepIn", resume<Nothing, Resume::StepIn>);
}

RequestKind stepOutRequest() {
    return makeRequest("stepOut", resume<Nothing, Resume::StepOut>);
}

RequestKind pauseRequest() {
    return makeRequest("pause", pause);
}

}  // namespace Tamrix::Dap
