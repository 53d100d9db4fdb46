#pragma once

#include <functional>

#include "runner/mcp/session/session.h"
#include "runner/mcp/tools/arguments.h"

namespace Tamrix::Mcp {

/// A value as an argument of the application's functions and as one in a script.
struct ActArguments {
    QVariantList values = {};
    QList<ActionValue> inScript = {};
    QList<std::pair<QString, ActionValue>> namedInScript = {};
    /// Called when it is done, before its line is made; may be null.
    std::function<void()> whenDone = {};

    void add(int number);
    void add(const QString& text);
};

/// Calls the application's function with the object that is meant by "target".
Outcome<ToolAnswer> actOn(Session& session, const Arguments& arguments, const char* function,
                          const ActArguments& others = {});
/// The same with an object that is known.
Outcome<ToolAnswer> actOn(Session& session, const Outcome<Meant>& meant, const char* function,
                          const ActArguments& others);

/// What all of them take first.
inline constexpr Parameter targetParameter = {"target", ParameterType::Text, Parameter::Required};

}  // namespace Tamrix::Mcp
