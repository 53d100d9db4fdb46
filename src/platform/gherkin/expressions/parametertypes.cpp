#include "platform/gherkin/expressions/parametertypes.h"

#include <utility>

#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/expressions/regularexpression.h"

namespace Tamrix::Gherkin {

namespace {

constexpr std::string_view integer = R"(-?\d+)";
constexpr std::string_view real = R"([-+]?(?:\d+(?:\.\d+)?|\.\d+)(?:[E][+-]?\d+)?)";

constexpr struct {
    std::string_view name;
    std::string_view pattern;
} builtinTypes[] = {
    {"int", integer},
    {"float", real},
    {"word", R"([^\s]+)"},
    {"string", R"re("([^"\\]*(?:\\.[^"\\]*)*)"|'([^'\\]*(?:\\.[^'\\]*)*)')re"},
    {"", ".*"},
    {"byte", integer},
    {"short", integer},
    {"long", integer},
    {"biginteger", integer},
    {"double", real},
    {"bigdecimal", real},
};

/// What would be misread in a Cucumber Expression or a regular expression.
constexpr std::string_view forbiddenInNames = "[]()$.|?*+{}/\\";

}  // namespace

ParameterTypes::ParameterTypes() {
    for (const auto& type : builtinTypes)
        add(type.name, {std::string(type.pattern)});
}

void ParameterTypes::add(std::string_view name, std::vector<std::string> patterns) {
    // g++ 12 sees an overlap in a literal in front of a temporary text.
    const std::string quotedName = std::string("'").append(name).append("'");
    if (name.find_first_of(forbiddenInNames) != std::string_view::npos)
        throw ExpressionError("The name of a parameter type may not hold any of " +
                              std::string(forbiddenInNames) + ": " + quotedName);
    if (find(name))
        throw ExpressionError("There is already a parameter type " + quotedName);
    if (patterns.empty())
        throw ExpressionError("The parameter type " + quotedName + " has no regular expression");
    ParameterType type{std::string(name), std::move(patterns), 0};
    for (const std::string& pattern : type.patterns) {
        const RegularExpression expression(pattern);
        // Groups have other numbers in the whole expression.
        if (expression.hasBackReferences())
            throw ExpressionError(std::string("The parameter type ")
                                      .append(quotedName)
                                      .append(" refers back to a group: ")
                                      .append(pattern));
        type.groupCount += expression.groupCount();
    }
    m_types.emplace(type.name, std::move(type));
}

const ParameterType* ParameterTypes::find(std::string_view name) const {
    const auto found = m_types.find(name);
    return found == m_types.end() ? nullptr : &found->second;
}

}  // namespace Tamrix::Gherkin
