// "initialize": who the client is, and what this server can do.

#include "dap/requests/request.h"
#include "dap/session/exceptionfilters.h"

namespace Tamrix::Dap {

namespace {

Outcome<Capabilities> initialize(Session& session, const InitializeArguments& arguments) {
    if (const Outcome<> done = session.initialize(arguments); !done)
        return fail(done.error());
    Capabilities capabilities;
    capabilities.exceptionBreakpointFilters = ExceptionFilters::offered();
    capabilities.completionTriggerCharacters = {"."};
    return capabilities;
}

}  // namespace

RequestKind initializeRequest() {
    return makeRequest("initialize", initialize);
}

}  // namespace Tamrix::Dap
