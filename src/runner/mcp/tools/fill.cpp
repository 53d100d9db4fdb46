#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> fill(Session& session, const Arguments& arguments) {
    ActArguments others;
    others.add(arguments.text("text"));
    return actOn(session, arguments, arguments.flag("type", false) ? "typeText" : "fill", others);
}

}  // namespace

Tool fillTool() {
    return {"fill",
            "Sets a field's whole text",
            {targetParameter,
             {"text", ParameterType::Text, Parameter::Required},
             {"type", ParameterType::Flag, Parameter::Optional, "types at the cursor instead"}},
            fill};
}

}  // namespace Tamrix::Mcp
