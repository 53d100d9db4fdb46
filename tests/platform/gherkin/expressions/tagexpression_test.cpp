#include "platform/gherkin/expressions/tagexpression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/gherkin/expressions/expressionerror.h"

namespace Tamrix::Gherkin {
namespace {

TEST(TagExpression, Holds) {
    const std::vector<std::string> tags = {"a", "b", "c(x)", "d e", "and"};
    const struct {
        const char* expression;
        bool holds;
    } rows[] = {
        {"", true},
        {"  ", true},
        {"@a", true},
        {"@x", false},
        {"a", false},
        {"@A", false},
        {"not @x", true},
        {"not not @a", true},
        {"@a and @x", false},
        {"@a or @x", true},
        // "not" before "and" before "or".
        {"@a or @b and @x", true},
        {"(@a or @b) and @x", false},
        {"not @x and @a", true},
        {"not (@x and @a)", true},
        {"not(@a)or(@b)", true},
        {"@x or @y or @b", true},
        {R"(@c\(x\))", true},
        {R"(@d\ e and not @d)", true},
        {"@and and @a", true},
        {R"(@a\\)", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TagExpression(row.expression).holds(tags), row.holds) << row.expression;
    EXPECT_FALSE(TagExpression("@a").holds({}));
    EXPECT_TRUE(TagExpression("not @a").holds({}));
}

TEST(TagExpression, PointsAtMistakes) {
    const struct {
        const char* expression;
        int column;
        const char* message;
    } rows[] = {
        {"and @a", 1, "Expected a tag"},
        {"@a and or @b", 8, "Expected a tag"},
        {"()", 2, "Expected a tag"},
        {"@a not", 4, "Expected 'and', 'or' or ')'"},
        {"@é @b", 4, "Expected 'and', 'or' or ')'"},
        {"@a or", 6, "Expected a tag at the end"},
        {"@a and (@b", 8, "The '(' does not have a matching ')'"},
        {"@a)", 3, "The ')' does not have a matching '('"},
        {R"(@a\b)", 3, "Only brackets, backslashes and whitespace can be escaped"},
        {R"(@a\)", 3, "Only brackets, backslashes and whitespace can be escaped"},
    };
    for (const auto& row : rows) {
        try {
            const TagExpression expression(row.expression);
            ADD_FAILURE() << row.expression;
        } catch (const ExpressionError& error) {
            EXPECT_EQ(error.column(), row.column) << error.what();
            EXPECT_THAT(error.what(), testing::EndsWith(std::string("\n") + row.message));
        }
    }
    EXPECT_THROW(TagExpression(std::string(20'001, '(')), ExpressionError);
}

}  // namespace
}  // namespace Tamrix::Gherkin
