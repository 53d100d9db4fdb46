// Cucumber Expressions, regular expressions and tag expressions. An input is read as
//
//     1 byte   the kind of the expression
//     a line   the expression
//     rest     the text to be matched, or tags separated by whitespace

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/fuzztarget.h"
#include "platform/gherkin/expressions/cucumberexpression.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/expressions/regularexpression.h"
#include "platform/gherkin/expressions/tagexpression.h"
#include "platform/gherkin/utf8.h"

using namespace Tamrix::Gherkin;

namespace {

void checkRange(const RegularExpression::Range& range, std::string_view text) {
    fuzzRequire(range.begin <= range.end && range.end <= text.size(), "a range lies in the text");
    fuzzRequire(!invalidUtf8(text.substr(range.begin, range.end - range.begin)),
                "a range holds whole characters");
}

void matchCucumber(const std::string& expression, const std::string& text) {
    static const ParameterTypes s_types;
    if (const auto arguments = CucumberExpression(expression, s_types).match(text))
        for (const Argument& argument : *arguments)
            checkRange(argument.range, text);
}

void matchRegular(const std::string& pattern, const std::string& text) {
    const RegularExpression expression(pattern);
    const auto match = expression.search(text);
    if (!match)
        return;
    fuzzRequire(static_cast<int>(match->size()) == expression.groupCount() + 1,
                "every group has an entry");
    fuzzRequire((*match)[0].has_value(), "the whole match is there");
    for (const auto& group : *match)
        if (group)
            checkRange(*group, text);
}

void holdTags(const std::string& expression, const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> tags;
    for (std::string tag; stream >> tag;)
        tags.push_back(tag);
    const bool holds = TagExpression(expression).holds(tags);
    if (!trimmed(expression).empty())
        fuzzRequire(TagExpression("not (" + expression + " )").holds(tags) != holds, "not negates");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string expression = input.substr(0, end);
    const std::string text = input.substr(std::min(end + 1, input.size()));
    if (invalidUtf8(text))
        return 0;
    constexpr void (*kinds[])(const std::string&, const std::string&) = {matchCucumber,
                                                                         matchRegular, holdTags};
    try {
        kinds[data[0] % 3](expression, text);
    } catch (const ExpressionError& error) {
        fuzzRequire(error.column() >= 0 && error.column() <= static_cast<int>(size) + 1,
                    "a mistake is in the expression");
    }
    return 0;
}
