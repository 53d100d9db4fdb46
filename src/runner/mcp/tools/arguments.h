#pragma once

#include <json/json.h>

#include <QString>
#include <QStringList>
#include <optional>

#include "base/outcome.h"
#include "runner/mcp/tools/tool.h"

namespace Tamrix::Mcp {

/// The arguments of a call: what is required is there, all are of the type of their parameter.
class Arguments {
public:
    /// Checks them against the tool. A failure names the parameter.
    static Outcome<Arguments> read(const Tool& tool, const Json::Value& values);

    bool has(const char* name) const { return m_values.isMember(name); }
    /// Empty when it is not there.
    QString text(const char* name) const;
    std::optional<int> integer(const char* name) const;
    std::optional<double> number(const char* name) const;
    bool flag(const char* name, bool otherwise) const;
    /// The steps of a path; one for a text.
    QStringList path(const char* name) const;
    const Json::Value& value(const char* name) const { return m_values[name]; }

private:
    explicit Arguments(const Json::Value& values) : m_values(values) {}

    Json::Value m_values;
};

/// Arguments of a tool as words of a command line: those that it requires in their order, the
/// others as NAME=VALUE, the properties of an object by their own names. A failure tells how the
/// tool is called.
Outcome<Json::Value> argumentsOfWords(const Tool& tool, const QStringList& words);

/// "click TARGET [x=N] [y=N]"
QString usageOf(const Tool& tool);

}  // namespace Tamrix::Mcp
