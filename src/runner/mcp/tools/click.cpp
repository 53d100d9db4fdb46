#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<ToolAnswer> click(Session& session, const Arguments& arguments) {
    if (arguments.has("x") != arguments.has("y"))
        return fail(FailureKind::BadArgument, QStringLiteral("click: 'x' and 'y' go together"));
    ActArguments others;
    if (arguments.has("x")) {
        others.add(*arguments.integer("x"));
        others.add(*arguments.integer("y"));
    }
    for (const char* const name : {"button", "modifiers"}) {
        if (!arguments.has(name))
            continue;
        const QString text = arguments.text(name);
        others.values.append(text);
        others.namedInScript.append({QLatin1String(name), text});
    }
    const bool isDouble = arguments.flag("double", false);
    return actOn(session, arguments, isDouble ? "doubleClick" : "click", others);
}

}  // namespace

Tool clickTool() {
    return {"click",
            "target in all tools: a ref (e7) or a name ({type='QLabel' text='A'})",
            {targetParameter,
             {"x", ParameterType::Integer, Parameter::Optional},
             {"y", ParameterType::Integer, Parameter::Optional},
             {"button", ParameterType::Text, Parameter::Optional},
             {"modifiers", ParameterType::Text, Parameter::Optional},
             {"double", ParameterType::Flag, Parameter::Optional}},
            click};
}

}  // namespace Tamrix::Mcp
