// "tamrixSearch" and "tamrixSetSearchState": a search on the screen that has failed.

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<SearchFailure> tellSearch(Session& session, const Nothing&) {
    return session.searchFailure();
}

Outcome<SearchFailure> setSearchState(Session& session, const SetSearchStateArguments& arguments) {
    if (const Outcome<> set = session.setSearchState(arguments.state); !set)
        return fail(set.error());
    return session.searchFailure();
}

}  // namespace

RequestKind tamrixSearchRequest() {
    return makeRequest("tamrixSearch", tellSearch);
}

RequestKind tamrixSetSearchStateRequest() {
    return makeRequest("tamrixSetSearchState", setSearchState);
}

}  // namespace Tamrix::Dap
