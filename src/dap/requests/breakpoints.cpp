// "setBreakpoints", "setExceptionBreakpoints" and "configurationDone": what stops the script, said
// before it goes on for the first time or later.

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<BreakpointsBody> setBreakpoints(Session& session,
                                        const SetBreakpointsArguments& arguments) {
    const QString path = arguments.source.path.value_or(QString());
    if (path.isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("'source.path' is missing"));
    return BreakpointsBody{session.setBreakPoints(
        path, arguments.breakpoints.value_or(std::vector<SourceBreakpoint>()))};
}

Outcome<Nothing> setExceptionBreakpoints(Session& session,
                                         const SetExceptionBreakpointsArguments& arguments) {
    if (const Outcome<> set = session.setExceptionFilters(arguments.filters); !set)
        return fail(set.error());
    return Nothing();
}

Outcome<Nothing> configurationDone(Session& session, const Nothing&) {
    session.configurationDone();
    return Nothing();
}

}  // namespace

RequestKind setBreakpointsRequest() {
    return makeRequest("setBreakpoints", setBreakpoints);
}

RequestKind setExceptionBreakpointsRequest() {
    return makeRequest("setExceptionBreakpoints", setExceptionBreakpoints);
}

RequestKind configurationDoneRequest() {
    return makeRequest("configurationDone", configurationDone);
}

}  // namespace Tamrix::Dap
