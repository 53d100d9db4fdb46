#include "platform/gherkin/expressions/generatedexpression.h"

#include <gtest/gtest.h>

#include "platform/gherkin/expressions/stepdefinitions.h"

namespace Tamrix::Gherkin {
namespace {

TEST(GeneratedExpressions, FitTheirStep) {
    const struct {
        const char* step;
        const char* expression;
    } rows[] = {
        {"nothing special", "nothing special"},
        {"3 apples and -4 pears", "{int} apples and {int} pears"},
        {"1.5 or .5 or 2.", "{float} or .5 or {int}."},
        {"the user \"Ann\" and 'Bob'", "the user {string} and {string}"},
        {"it's Ann's", "it's Ann's"},
        {"\"a \\\" b\" (or c/d) {e} \\f", "{string} \\(or c\\/d\\) \\{e\\} \\\\f"},
        {"x86 and 64bit and 1.2.3", "x86 and 64bit and {float}.3"},
        {"\"not closed", "\"not closed"},
        {"\xC3\xA4"
         "1 \xC3\xA4",
         "\xC3\xA4"
         "1 \xC3\xA4"},
    };
    for (const auto& row : rows) {
        const GeneratedExpression expression = generateExpression(row.step);
        EXPECT_EQ(expression.source, row.expression);
        StepDefinitions definitions;
        definitions.addExpression(expression.source, {});
        const auto matches = definitions.find(row.step);
        ASSERT_EQ(matches.size(), 1u) << row.step;
        EXPECT_EQ(matches[0].arguments.size(), expression.typeNames.size()) << row.step;
    }
}

}  // namespace
}  // namespace Tamrix::Gherkin
