#include "platform/gherkin/expressions/cucumberexpression.h"

#include <algorithm>
#include <utility>

#include "platform/gherkin/expressions/cucumberexpressionparser.h"
#include "platform/gherkin/expressions/expressionerror.h"

namespace Tamrix::Gherkin {

namespace {

using Node = CucumberExpressionNode;
using Type = Node::Type;

constexpr std::string_view stringType = "string";

void appendEscaped(std::string_view text, std::string* pattern) {
    constexpr std::string_view special = R"(\^$.|?*+()[]{})";
    for (const char byte : text) {
        if (special.find(byte) != std::string_view::npos)
            *pattern += '\\';
        *pattern += byte;
    }
}

/// The pattern of a part without parameters in it.
void appendPattern(const Node& node, std::string* pattern) {
    switch (node.type) {
        case Type::Text:
            appendEscaped(node.text, pattern);
            break;
        case Type::Optional:
            *pattern += "(?:";
            for (const Node& child : node.children)
                appendPattern(child, pattern);
            *pattern += ")?";
            break;
        case Type::Alternation:
            *pattern += "(?:";
            for (std::size_t i = 0; i < node.children.size(); ++i) {
                *pattern += i > 0 ? "|" : "";
                appendPattern(node.children[i], pattern);
            }
            *pattern += ")";
            break;
        case Type::Alternative:
        case Type::Expression:
            for (const Node& child : node.children)
                appendPattern(child, pattern);
            break;
        case Type::Parameter:
            break;
    }
}

void appendPattern(const ParameterType& type, std::string* pattern) {
    *pattern += '(';
    if (type.patterns.size() == 1)
        *pattern += type.patterns[0];
    for (std::size_t i = 0; type.patterns.size() > 1 && i < type.patterns.size(); ++i)
        pattern->append(i > 0 ? "|" : "").append("(?:").append(type.patterns[i]).append(")");
    *pattern += ')';
}

std::optional<std::string> textOf(const std::optional<RegularExpression::Range>& range,
                                  std::string_view text) {
    if (!range)
        return std::nullopt;
    return std::string(text.substr(range->begin, range->end - range->begin));
}

/// A text in quotation marks has what stands in them, where a mark may follow a backslash.
std::optional<std::string> unquoted(const std::vector<std::optional<std::string>>& groups) {
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [](const auto& group) { return group.has_value(); });
    if (found == groups.end())
        return std::nullopt;
    std::string result;
    const std::string& text = **found;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isEscape = text[at] == '\\' && at + 1 < text.size() &&
                              (text[at + 1] == '"' || text[at + 1] == '\'');
        result += text[isEscape ? ++at : at];
    }
    return result;
}

}  // namespace

CucumberExpression::Compiled CucumberExpression::compile(std::string_view expression,
                                                         const ParameterTypes& types) {
    Compiled result;
    result.pattern = '^';
    for (const Node& node : parseCucumberExpression(expression).children) {
        if (node.type != Type::Parameter) {
            appendPattern(node, &result.pattern);
            continue;
        }
        const ParameterType* const type = types.find(node.text);
        if (!type)
            throw ExpressionError({"Cucumber Expression", expression, node.begin, node.end,
                                   "Undefined parameter type '" + node.text + "'",
                                   "Please register a parameter type for '" + node.text + "'"});
        appendPattern(*type, &result.pattern);
        result.parameters.push_back({type->name, type->groupCount});
    }
    result.pattern += '$';
    return result;
}

CucumberExpression::CucumberExpression(std::string_view expression, const ParameterTypes& types)
    : CucumberExpression(compile(expression, types)) {}

CucumberExpression::CucumberExpression(Compiled compiled)
    : m_regularExpression(compiled.pattern), m_parameters(std::move(compiled.parameters)) {}

std::optional<std::vector<Argument>> CucumberExpression::match(std::string_view text) const {
    const std::optional<RegularExpression::Match> match = m_regularExpression.search(text);
    if (!match)
        return std::nullopt;
    std::vector<Argument> arguments;
    std::size_t group = 1;
    for (const Parameter& parameter : m_parameters) {
        Argument argument;
        argument.typeName = parameter.typeName;
        argument.text = textOf((*match)[group], text);
        argument.range = (*match)[group].value_or(RegularExpression::Range());
        ++group;
        for (int i = 0; i < parameter.groupCount; ++i)
            argument.groups.push_back(textOf((*match)[group++], text));
        if (parameter.typeName == stringType)
            argument.text = unquoted(argument.groups);
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

}  // namespace Tamrix::Gherkin
