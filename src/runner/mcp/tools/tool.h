#pragma once

#include <json/json.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "base/outcome.h"

namespace Tamrix::Mcp {

class Arguments;
class Session;

enum class ParameterType {
    Text,
    Integer,
    Number,
    Flag,
    Path,       ///< a text, or a list of texts
    Properties  ///< an object with texts, numbers and truths
};

/// A parameter of a tool, as clients are told of it and as its argument is checked.
struct Parameter {
    const char* name;
    ParameterType type;
    enum Need { Required, Optional } need;
    /// Null where the name says it all: each word costs the client something.
    const char* description = nullptr;
};

struct ToolAnswer {
    QString text;
    /// A picture as PNG, empty for none.
    QByteArray picture = {};
};

/// One thing that a client can have done.
struct Tool {
    const char* name;
    const char* description;
    std::vector<Parameter> parameters;
    /// A failure is told to the client as it is.
    Outcome<ToolAnswer> (*call)(Session& session, const Arguments& arguments);
};

/// All of them; each is made in the file of its name.
const std::vector<Tool>& allTools();
/// Null for an unknown name.
const Tool* findTool(const std::vector<Tool>& tools, const QString& name);

/// As "tools/list" tells it: an array.
Json::Value describeTools(const std::vector<Tool>& tools);

}  // namespace Tamrix::Mcp
