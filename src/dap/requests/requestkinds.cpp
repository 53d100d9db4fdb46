#include "dap/requests/request.h"

// The requests in the order of a session. Each NAME is the function NAMERequest() of a file.
#define TAMRIX_FOR_EACH_REQUEST(DO) \
    DO(initialize)                  \
    DO(launch)                      \
    DO(setBreakpoints)              \
    DO(setExceptionBreakpoints)     \
    DO(configurationDone)           \
    DO(threads)                     \
    DO(stackTrace)                  \
    DO(scopes)                      \
    DO(variables)                   \
    DO(evaluate)                    \
    DO(setVariable)                 \
    DO(setExpression)               \
    DO(completions)                 \
    DO(exceptionInfo)               \
    DO(tamrixSearch)                \
    DO(tamrixSetSearchState)        \
    DO(source)                      \
    DO(continue)                    \
    DO(next)                        \
    DO(stepIn)                      \
    DO(stepOut)                     \
    DO(pause)                       \
    DO(restart)                     \
    DO(terminate)                   \
    DO(disconnect)

namespace Tamrix::Dap {

#define DECLARE_REQUEST(NAME) RequestKind NAME##Request();
TAMRIX_FOR_EACH_REQUEST(DECLARE_REQUEST)
#undef DECLARE_REQUEST

const std::vector<RequestKind>& requestKinds() {
#define CALL_REQUEST(NAME) NAME##Request(),
    static const std::vector<RequestKind> s_kinds = {TAMRIX_FOR_EACH_REQUEST(CALL_REQUEST)};
#undef CALL_REQUEST
    return s_kinds;
}

}  // namespace Tamrix::Dap
