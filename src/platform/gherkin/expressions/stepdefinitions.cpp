#include "platform/gherkin/expressions/stepdefinitions.h"

#include <algorithm>
#include <utility>

namespace Tamrix::Gherkin {

namespace {

/// The arguments that the groups of a regular expression make.
std::vector<Argument> argumentsOf(const RegularExpression& expression,
                                  const RegularExpression::Match& match, std::string_view text) {
    std::vector<Argument> arguments;
    for (std::size_t group = 1; group < match.size(); ++group) {
        Argument argument;
        argument.groupName = expression.groupNames()[group - 1];
        if (match[group]) {
            argument.range = *match[group];
            argument.text =
                text.substr(argument.range.begin, argument.range.end - argument.range.begin);
        }
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

}  // namespace

StepDefinitions::Id StepDefinitions::addExpression(std::string_view cucumberExpression,
                                                   const ScriptLocation& location) {
    return add({{std::string(cucumberExpression), location},
                CucumberExpression(cucumberExpression, m_types)});
}

StepDefinitions::Id StepDefinitions::addRegularExpression(std::string_view pattern,
                                                          const ScriptLocation& location) {
    return add({{std::string(pattern), location}, RegularExpression(pattern)});
}

const RegularExpression& StepDefinitions::regularExpression(const Entry& entry) const {
    const auto* const cucumber = std::get_if<CucumberExpression>(&entry.expression);
    return cucumber ? cucumber->regularExpression() : std::get<RegularExpression>(entry.expression);
}

StepDefinitions::Id StepDefinitions::add(Entry entry) {
    const Id id = m_definitions.size();
    // A deque leaves its elements where they are.
    const std::string& prefix =
        regularExpression(m_definitions.emplace_back(std::move(entry))).prefix();
    m_byPrefix[prefix].push_back(id);
    const auto place =
        std::lower_bound(m_prefixLengths.begin(), m_prefixLengths.end(), prefix.size());
    if (place == m_prefixLengths.end() || *place != prefix.size())
        m_prefixLengths.insert(place, prefix.size());
    return id;
}

std::vector<StepDefinitions::Match> StepDefinitions::find(std::string_view text) const {
    std::vector<Match> matches;
    for (const std::size_t length : m_prefixLengths) {
        if (length > text.size())
            break;
        const auto candidates = m_byPrefix.find(text.substr(0, length));
        if (candidates == m_byPrefix.end())
            continue;
        for (const Id id : candidates->second) {
            const Entry& entry = m_definitions[id];
            if (const auto* const cucumber = std::get_if<CucumberExpression>(&entry.expression)) {
                if (std::optional<std::vector<Argument>> arguments = cucumber->match(text))
                    matches.push_back({id, std::move(*arguments)});
                continue;
            }
            const RegularExpression& expression = std::get<RegularExpression>(entry.expression);
            if (const auto match = expression.search(text))
                matches.push_back({id, argumentsOf(expression, *match, text)});
        }
    }
    std::sort(matches.begin(), matches.end(),
              [](const Match& left, const Match& right) { return left.id < right.id; });
    return matches;
}

}  // namespace Tamrix::Gherkin
