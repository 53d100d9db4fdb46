// "variables": what the script holds, a level and a page at a time.

#include <algorithm>

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<VariablesBody> variables(Session& session, const VariablesArguments& arguments) {
    const Outcome<Debuggee*> debuggee = session.debuggeeAt(std::nullopt);
    if (!debuggee)
        return fail(debuggee.error());
    const Outcome<std::vector<Variable>> all =
        session.values().below(arguments.variablesReference, **debuggee);
    if (!all)
        return fail(all.error());
    const int size = static_cast<int>(all->size());
    const int start = std::clamp(arguments.start.value_or(0), 0, size);
    // None, or 0, means all.
    const int count = arguments.count.value_or(0);
    const int end = count > 0 && count < size - start ? start + count : size;
    return VariablesBody{{all->begin() + start, all->begin() + end}};
}

}  // namespace

RequestKind variablesRequest() {
    return makeRequest("variables", variables);
}

}  // namespace Tamrix::Dap
