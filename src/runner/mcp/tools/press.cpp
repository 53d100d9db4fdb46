#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> press(Session& session, const Arguments& arguments) {
    const Outcome<Meant> meant =
        arguments.has("target") ? session.meant(arguments.text("target")) : session.focused();
    ActArguments others;
    others.add(arguments.text("keys"));
    return actOn(session, meant, "press", others);
}

}  // namespace

Tool pressTool() {
    return {"press",
            "Presses keys: Ctrl+S, Return",
            {{"keys", ParameterType::Text, Parameter::Required},
             {"target", ParameterType::Text, Parameter::Optional, "default: the focus"}},
            press};
}

}  // namespace Tamrix::Mcp
