#include "platform/gherkin/expressions/cucumberexpression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/gherkin/expressions/expressionerror.h"

namespace Tamrix::Gherkin {
namespace {

ParameterTypes typesWithColor() {
    ParameterTypes types;
    types.add("color", {"red|blue", "(dark|light) (green)"});
    return types;
}

/// The arguments in brackets with their types; "no", or the error.
std::string matched(const std::string& expression, const std::string& text) {
    try {
        const auto arguments = CucumberExpression(expression, typesWithColor()).match(text);
        if (!arguments)
            return "no";
        std::string result = "yes";
        for (const Argument& argument : *arguments)
            result += " [" + *argument.typeName + " " + argument.text.value_or("-") + "]";
        return result;
    } catch (const ExpressionError& error) {
        return error.what();
    }
}

TEST(CucumberExpression, Matches) {
    const struct {
        const char* expression;
        const char* text;
        const char* matched;
    } rows[] = {
        {"", "", "yes"},
        {"three mice", "three mice", "yes"},
        {"three mice", "three mice!", "no"},
        {"a.b", "axb", "no"},
        {"price: 5$ (net) [a]|^+*", "price: 5$ net [a]|^+*", "yes"},
        // Optional text, alternatives, escapes.
        {"{int} cucumber(s)", "1 cucumber", "yes [int 1]"},
        {"{int} cucumber(s)", "-22 cucumbers", "yes [int -22]"},
        {"in my belly/stomach", "in my stomach", "yes"},
        {"in my belly/stomach", "in my bellystomach", "no"},
        {"mice/rat(s) {int}", "rats 3", "yes [int 3]"},
        {"a/b{int}", "b7", "yes [int 7]"},
        {R"(a\/b \(c\) \{d} \\ e\ f)", R"(a/b (c) {d} \ e f)", "yes"},
        {"a) b}", "a) b}", "yes"},
        {R"(one\ two/three)", "three", "yes"},
        // The types of the language.
        {"{float}", "-1.5", "yes [float -1.5]"},
        {"{float}", ".5", "yes [float .5]"},
        {"{float}", "1E-10", "yes [float 1E-10]"},
        {"{float}", "5.", "no"},
        {"{double} {bigdecimal}", "1 2.0", "yes [double 1] [bigdecimal 2.0]"},
        {"{byte} {short} {long} {biginteger}", "1 2 3 4",
         "yes [byte 1] [short 2] [long 3] [biginteger 4]"},
        {"{int}", "1.5", "no"},
        {"{word} {word}", "né là", "yes [word né] [word là]"},
        {"{word}", "two words", "no"},
        {"{}", "any thing", "yes [ any thing]"},
        {"{}", "", "yes [ ]"},
        {"say {string} and {string}", R"(say "it's" and 'so "so"')",
         R"(yes [string it's] [string so "so"])"},
        {"{string}", R"("a \"b\" \n")", R"(yes [string a "b" \n])"},
        {"{string}", R"('it\'s')", "yes [string it's]"},
        {"{string}", "''", "yes [string ]"},
        {"{string}", "\"a'", "no"},
        // Own types.
        {"a {color} ball", "a blue ball", "yes [color blue]"},
        {"a {color} ball", "a dark green ball", "yes [color dark green]"},
        {"a {color} ball", "a green ball", "no"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(matched(row.expression, row.text), row.matched)
            << row.expression << " with " << row.text;
}

TEST(CucumberExpression, GivesGroupsAndPlaces) {
    const CucumberExpression expression("é {color} {string} {color}", typesWithColor());
    const auto arguments = expression.match(R"(é light green "a" red)");
    ASSERT_TRUE(arguments);
    using Groups = std::vector<std::optional<std::string>>;
    EXPECT_EQ((*arguments)[0].groups, (Groups{"light", "green"}));
    EXPECT_EQ((*arguments)[1].groups, (Groups{"a", std::nullopt}));
    EXPECT_EQ((*arguments)[2].groups, (Groups{std::nullopt, std::nullopt}));
    // In bytes, with the quotation marks.
    EXPECT_EQ((*arguments)[0].range.begin, 3U);
    EXPECT_EQ((*arguments)[1].range.begin, 15U);
    EXPECT_EQ((*arguments)[1].range.end, 18U);
}

TEST(CucumberExpression, PointsAtMistakes) {
    EXPECT_EQ(matched("é {int} b(", ""),
              "This Cucumber Expression has a problem at column 10:\n"
              "\n"
              "é {int} b(\n"
              "         ^\n"
              "The '(' does not have a matching ')'.\n"
              "If you did not intend to use optional text you can use '\\(' to escape it");
    const struct {
        const char* expression;
        const char* mark;
        const char* message;
    } rows[] = {
        {"a {nope} b", "  ^----^", "Undefined parameter type 'nope'"},
        {"a {b", "  ^", "The '{' does not have a matching '}'"},
        {"{a(b)}", "  ^", R"(Parameter names may not contain '{', '}', '(', ')', '\' or '/')"},
        {"{{a}", " ^", R"(Parameter names may not contain '{', '}', '(', ')', '\' or '/')"},
        {"a()", " ^^", "An optional must contain some text"},
        {"(a(b))", "  ^", "An optional may not contain an other optional"},
        {"(a {int})", "   ^", "An optional may not contain a parameter type"},
        {"(a/b)", "  ^", "An alternation can not be used inside an optional"},
        {"a /b", "  ^", "Alternative may not be empty"},
        {"a/ b", "  ^", "Alternative may not be empty"},
        {"a//b", "  ^", "Alternative may not be empty"},
        {"(a)/b", "^-^", "An alternative may not exclusively contain optionals"},
        {R"(a\b)", "  ^",
         R"(Only the characters '{', '}', '(', ')', '\', '/' and whitespace can be escaped)"},
        {R"(a\)", " ^", "The end of line can not be escaped"},
    };
    for (const auto& row : rows)
        EXPECT_THAT(matched(row.expression, ""),
                    testing::HasSubstr(std::string("\n") + row.expression + "\n" + row.mark + "\n" +
                                       row.message + ".\n"));
    EXPECT_EQ(matched(std::string(20'001, 'a'), ""),
              "A Cucumber Expression is longer than 20000 bytes");
    EXPECT_EQ(matched("\xFF", ""), "A Cucumber Expression isn't valid UTF-8");
}

TEST(CucumberExpression, RefusesBadParameterTypes) {
    const struct {
        const char* name;
        std::vector<std::string> patterns;
        const char* error;
    } rows[] = {
        {"a{b", {"x"}, "The name of a parameter type may not hold any of []()$.|?*+{}/\\: 'a{b'"},
        {"int", {"x"}, "There is already a parameter type 'int'"},
        {"", {"x"}, "There is already a parameter type ''"},
        {"none", {}, "The parameter type 'none' has no regular expression"},
        {"back", {"x", R"((a)\1)"}, "The parameter type 'back' refers back to a group: (a)\\1"},
        {"bad",
         {"("},
         "This regular expression has a problem at column 1:\n\n(\n^\nThe '(' does not have a "
         "matching ')'"},
    };
    ParameterTypes types;
    for (const auto& row : rows) {
        try {
            types.add(row.name, row.patterns);
            ADD_FAILURE() << row.name;
        } catch (const ExpressionError& error) {
            EXPECT_STREQ(error.what(), row.error);
        }
    }
    EXPECT_EQ(types.find("back"), nullptr);
}

}  // namespace
}  // namespace Tamrix::Gherkin
