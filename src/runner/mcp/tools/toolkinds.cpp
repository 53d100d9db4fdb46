#include "runner/mcp/tools/tool.h"

// The tools in the order in which clients are told of them. Each NAME is the function NAMETool() of
// a file.
#define TAMRIX_FOR_EACH_TOOL(DO) \
    DO(start)                    \
    DO(snapshot)                 \
    DO(click)                    \
    DO(fill)                     \
    DO(press)                    \
    DO(select)                   \
    DO(check)                    \
    DO(drag)                     \
    DO(close)                    \
    DO(wait)                     \
    DO(properties)               \
    DO(names)                    \
    DO(screenshot)               \
    DO(recordTo)                 \
    DO(runCase)                  \
    DO(journal)

namespace Tamrix::Mcp {

#define DECLARE_TOOL(NAME) Tool NAME##Tool();
TAMRIX_FOR_EACH_TOOL(DECLARE_TOOL)
#undef DECLARE_TOOL

const std::vector<Tool>& allTools() {
#define CALL_TOOL(NAME) NAME##Tool(),
    static const std::vector<Tool> s_tools = {TAMRIX_FOR_EACH_TOOL(CALL_TOOL)};
#undef CALL_TOOL
    return s_tools;
}

}  // namespace Tamrix::Mcp
