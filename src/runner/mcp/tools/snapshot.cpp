#include "runner/mcp/screen/viewtext.h"
#include "runner/mcp/session/session.h"
#include "runner/mcp/tools/arguments.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> snapshot(Session& session, const Arguments& arguments) {
    const Outcome<const View*> view = session.look();
    if (!view)
        return fail(view.error());
    ViewPart part;
    if (arguments.has("root")) {
        const Outcome<const ViewObject*> root = session.visible(arguments.text("root"));
        if (!root)
            return fail(root.error());
        part.root = (*root)->ref;
    }
    part.find = arguments.text("find");
    part.depth = arguments.integer("depth").value_or(-1);
    return ToolAnswer{viewText(**view, part)};
}

}  // namespace

Tool snapshotTool() {
    return {"snapshot",
            "Visible objects, one a line: ref type \"text\" #name = value [state]",
            {{"root", ParameterType::Text, Parameter::Optional, "ref"},
             {"find", ParameterType::Text, Parameter::Optional, "part of type, name or text"},
             {"depth", ParameterType::Integer, Parameter::Optional}},
            snapshot};
}

}  // namespace Tamrix::Mcp
