#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> close(Session& session, const Arguments& arguments) {
    return actOn(session, arguments, "closeWindow");
}

}  // namespace

Tool closeTool() {
    return {"close", "Closes a window", {targetParameter}, close};
}

}  // namespace Tamrix::Mcp
