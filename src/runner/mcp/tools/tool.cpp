#include "runner/mcp/tools/tool.h"

#include <algorithm>

namespace Tamrix::Mcp {

namespace {

Json::Value schemaOf(const Parameter& parameter) {
    Json::Value schema(Json::objectValue);
    switch (parameter.type) {
        case ParameterType::Text:
            schema["type"] = "string";
            break;
        case ParameterType::Integer:
            schema["type"] = "integer";
            break;
        case ParameterType::Number:
            schema["type"] = "number";
            break;
        case ParameterType::Flag:
            schema["type"] = "boolean";
            break;
        case ParameterType::Path:
            schema["type"].append("string");
            schema["type"].append("array");
            break;
        case ParameterType::Properties:
            schema["type"] = "object";
            break;
    }
    if (parameter.description)
        schema["description"] = parameter.description;
    return schema;
}

}  // namespace

const Tool* findTool(const std::vector<Tool>& tools, const QString& name) {
    const auto found = std::find_if(tools.begin(), tools.end(), [&](const Tool& each) {
        return name == QLatin1String(each.name);
    });
    return found == tools.end() ? nullptr : &*found;
}

Json::Value describeTools(const std::vector<Tool>& tools) {
    Json::Value list(Json::arrayValue);
    for (const Tool& tool : tools) {
        Json::Value described(Json::objectValue);
        described["name"] = tool.name;
        described["description"] = tool.description;
        Json::Value& schema = described["inputSchema"];
        schema["type"] = "object";
        schema["properties"] = Json::Value(Json::objectValue);
        for (const Parameter& parameter : tool.parameters) {
            schema["properties"][parameter.name] = schemaOf(parameter);
            if (parameter.need == Parameter::Required)
                schema["required"].append(parameter.name);
        }
        list.append(described);
    }
    return list;
}

}  // namespace Tamrix::Mcp
