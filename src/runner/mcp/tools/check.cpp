#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> check(Session& session, const Arguments& arguments) {
    return actOn(session, arguments, arguments.flag("on", true) ? "check" : "uncheck");
}

}  // namespace

Tool checkTool() {
    return {"check",
            "Checks a box or button, or with on=false takes the check away",
            {targetParameter, {"on", ParameterType::Flag, Parameter::Optional}},
            check};
}

}  // namespace Tamrix::Mcp
