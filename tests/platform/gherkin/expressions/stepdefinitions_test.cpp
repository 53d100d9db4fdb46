#include "platform/gherkin/expressions/stepdefinitions.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/gherkin/expressions/expressionerror.h"

namespace Tamrix::Gherkin {
namespace {

/// The definitions that match, each with its arguments.
std::string found(const StepDefinitions& definitions, const std::string& text) {
    std::string result;
    for (const StepDefinitions::Match& match : definitions.find(text)) {
        result += definitions.definition(match.id).source;
        for (const Argument& argument : match.arguments)
            result += " [" + argument.typeName.value_or(argument.groupName) + "=" +
                      argument.text.value_or("-") + "]";
        result += "; ";
    }
    return result;
}

TEST(StepDefinitions, FindsAllThatMatch) {
    StepDefinitions definitions;
    definitions.parameterTypes().add("color", {"red|blue"});
    for (const char* const expression : {"an order with {int} item(s)", "an order",
                                         "an order with {word} item", "{}", "é {color}"})
        definitions.addExpression(expression, {"steps.py", 1});
    for (const char* const pattern :
         {R"(^the total is (\d+\.\d\d)$)", R"(total)", R"(^an (?P<what>\w+)( twice)?$)"})
        definitions.addRegularExpression(pattern, {"steps.py", 2});
    const struct {
        const char* text;
        const char* found;
    } rows[] = {
        {"an order with 3 items",
         "an order with {int} item(s) [int=3]; {} [=an order with 3 items]; "},
        {"an order with 1 item",
         "an order with {int} item(s) [int=1]; an order with {word} item [word=1]; {} [=an order "
         "with 1 item]; "},
        {"an order", "an order; {} [=an order]; ^an (?P<what>\\w+)( twice)?$ [what=order] [=-]; "},
        {"the total is 1.50",
         "{} [=the total is 1.50]; ^the total is (\\d+\\.\\d\\d)$ [=1.50]; total; "},
        {"é blue", "{} [=é blue]; é {color} [color=blue]; "},
        {"", "{} [=]; "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(found(definitions, row.text), row.found) << row.text;
    EXPECT_EQ(found(StepDefinitions(), "an order"), "");
}

TEST(StepDefinitions, AddsNothingThatIsWrong) {
    StepDefinitions definitions;
    EXPECT_EQ(definitions.addExpression("right", {"a.py", 7}), 0U);
    EXPECT_THROW(definitions.addExpression("(", {"a.py", 8}), ExpressionError);
    EXPECT_THROW(definitions.addRegularExpression("(", {"a.py", 9}), ExpressionError);
    EXPECT_EQ(definitions.count(), 1U);
    EXPECT_EQ(definitions.definition(0).location.line, 7);
}

}  // namespace
}  // namespace Tamrix::Gherkin
