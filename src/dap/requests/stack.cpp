// "threads", "stackTrace", "scopes" and "exceptionInfo": where the script stands, and why.

#include <algorithm>

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<ThreadsBody> threads(Session& session, const Nothing&) {
    return ThreadsBody{{{Session::threadId, session.threadName()}}};
}

Outcome<StackTraceBody> stackTrace(Session& session, const StackTraceArguments& arguments) {
    const Outcome<std::vector<StackFrame>> stack = session.stack();
    if (!stack)
        return fail(stack.error());
    const int size = static_cast<int>(stack->size());
    const int start = std::clamp(arguments.startFrame.value_or(0), 0, size);
    // None, or 0, means all.
    const int levels = arguments.levels.value_or(0);
    const int end = levels > 0 && levels < size - start ? start + levels : size;
    return StackTraceBody{{stack->begin() + start, stack->begin() + end}, size};
}

Outcome<ScopesBody> scopes(Session& session, const ScopesArguments& arguments) {
    const Outcome<std::vector<StackFrame>> stack = session.stack();
    if (!stack)
        return fail(stack.error());
    const int level = arguments.frameId - Session::topFrameId;
    if (level < 0 || level >= static_cast<int>(stack->size()))
        return fail(FailureKind::NotFound,
                    QStringLiteral("there is no frame %1").arg(arguments.frameId));
    return ScopesBody{{{"Variables", session.values().top(level), false}}};
}

Outcome<ExceptionInfoBody> exceptionInfo(Session& session, const Nothing&) {
    const ReportedStop* const stop = session.reportedStop();
    if (!stop || stop->reason != QLatin1String("exception"))
        return fail(FailureKind::NotReady,
                    QStringLiteral("the script does not stand at a failure or an error"));
    ExceptionInfoBody body;
    body.exceptionId = stop->description;
    body.description =
        stop->detail.isEmpty() ? stop->text : stop->text + QLatin1Char('\n') + stop->detail;
    body.breakMode = QStringLiteral("always");
    return body;
}

}  // namespace

RequestKind threadsRequest() {
    return makeRequest("threads", threads);
}

RequestKind stackTraceRequest() {
    return makeRequest("stackTrace", stackTrace);
}

RequestKind scopesRequest() {
    return makeRequest("scopes", scopes);
}

RequestKind exceptionInfoRequest() {
    return makeRequest("exceptionInfo", exceptionInfo);
}

}  // namespace Tamrix::Dap
