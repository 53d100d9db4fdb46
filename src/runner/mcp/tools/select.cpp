#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> select(Session& session, const Arguments& arguments) {
    ActArguments others;
    const QStringList path = arguments.path("item");
    if (path.size() == 1) {
        others.add(path.first());
    } else {
        QVariantList steps;
        for (const QString& step : path)
            steps.append(step);
        others.values.append(QVariant(steps));
        others.inScript.append(ActionValue(path));
    }
    return actOn(session, arguments, "selectItem", others);
}

}  // namespace

Tool selectTool() {
    return {"select",
            "Selects an item of a menu (bar), list, tree, combo box or tab bar: its text, or a "
            "list of steps",
            {targetParameter, {"item", ParameterType::Path, Parameter::Required}},
            select};
}

}  // namespace Tamrix::Mcp
