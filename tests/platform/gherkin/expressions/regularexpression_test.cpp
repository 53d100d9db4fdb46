#include "platform/gherkin/expressions/regularexpression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/gherkin/expressions/expressionerror.h"

namespace Tamrix::Gherkin {
namespace {

/// The whole match and the groups in brackets, "[-]" for a group that took no part; or "no".
std::string found(const std::string& pattern, const std::string& text) {
    const auto match = RegularExpression(pattern).search(text);
    if (!match)
        return "no";
    std::string result;
    for (const auto& group : *match)
        result += group ? "[" + text.substr(group->begin, group->end - group->begin) + "]" : "[-]";
    return result;
}

TEST(GherkinRegularExpression, Matches) {
    const struct {
        const char* pattern;
        const char* text;
        const char* found;
    } rows[] = {
        {"", "abc", "[]"},
        {R"(the total is (\d+\.\d\d))", "so the total is 12.50.", "[the total is 12.50][12.50]"},
        {R"(^(\d+)$)", "12a", "no"},
        {"a.c", "a\nc a-c", "[a-c]"},
        {"(?s)a.c", "a\nc", "[a\nc]"},
        {"(?m)^b$", "a\nb\nc", "[b]"},
        {"^b$", "a\nb\nc", "no"},
        // What is repeated takes as much as it can, or as little with "?".
        {"(a+)(a*)", "aaa", "[aaa][aaa][]"},
        {"(a+?)(a*?)$", "aaa", "[aaa][a][aa]"},
        {"a{2}", "aaa", "[aa]"},
        {"a{2,}", "aaaa", "[aaaa]"},
        {"a{,1}", "aaa", "[a]"},
        {"a{1,2}?b", "aab", "[aab]"},
        {"a{x}", "a{x}", "[a{x}]"},
        // The first alternative that leads to a match wins, not the longest.
        {"a|ab", "ab", "[a]"},
        {"^(?:a|ab)$", "ab", "[ab]"},
        {"(a)|(b)", "b", "[b][-][b]"},
        {"(?:(a)|b)*", "ab", "[ab][a]"},
        // Rounds that take nothing end.
        {"(?:a*)*b", "aab", "[aab]"},
        {"(?:|a)+$", "aa", "[aa]"},
        // Alphabets.
        {"^.{3}$", "éß😀", "[éß😀]"},
        {R"(^\w+$)", "Überstraße_7", "[Überstraße_7]"},
        {R"(^\w+$)", "日本語", "[日本語]"},
        {R"(\W+)", "naïve – yes", "[ – ]"},
        {R"(\bé\w*)", "né été", "[été]"},
        {"(?i)STRASSE ÄÖ я", "straße äö Я Strasse äÖ Я", "[Strasse äÖ Я]"},
        {"(?i)[ä-ö]+", "ÄÖ", "[ÄÖ]"},
        {R"((?i)(a)\1)", "aA", "[aA][a]"},
        // Classes.
        {"[]a]+", "a]b", "[a]]"},
        {"[^]a]+", "a]b-", "[b-]"},
        {R"([\d-]+)", "a1-2", "[1-2]"},
        {R"([^\s"]+)", "\" ab\"", "[ab]"},
        {R"([\]\\]+)", "a\\]", "[\\]]"},
        {R"(\x41\u00e9\t)", "Aé\t", "[Aé\t]"},
        // Looking ahead, and back to groups.
        {"a(?=b)", "acab", "[a]"},
        {"a(?!c)", "acab", "[a]"},
        {"(?=(a+))a*b\\1", "baaabac", "[aba][a]"},
        {"(?P<mark>['\"]).*?(?P=mark)", "say 'a \"b' \"", "['a \"b'][']"},
        {R"((?<x>a)(b)\2)", "abb", "[abb][a][b]"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(found(row.pattern, row.text), row.found) << row.pattern << " in " << row.text;
}

TEST(GherkinRegularExpression, PointsAtMistakes) {
    const struct {
        const char* pattern;
        int column;
        const char* message;
    } rows[] = {
        {"é(a", 2, "The '(' does not have a matching ')'"},
        {"é)a", 2, "The ')' does not have a matching '('"},
        {"a[b", 2, "The '[' does not have a matching ']'"},
        {"a[^]", 2, "The '[' does not have a matching ']'"},
        {"+a", 1, "There is nothing to repeat"},
        {"a|*", 3, "There is nothing to repeat"},
        {"a**", 3, "What is repeated can't be repeated again without a group"},
        {"a{2}{3}", 5, "What is repeated can't be repeated again without a group"},
        {"a{3,2}", 2, "The smaller number comes first"},
        {"a{1001}", 2, "Nothing can be repeated more than 1000 times by number"},
        {"[b-a]", 2, "A range goes from a character to one that comes later"},
        {R"([a-\d])", 2, "A range goes from a character to one that comes later"},
        {R"(\2(a)(b))", 1, "There is no group 2 before this place"},
        {R"((a\1))", 3, "There is no group 1 before this place"},
        {"(?P=x)", 1, "There is no group 'x'"},
        {"(?P<x>a)(?P<x>b)", 9, "There is already a group 'x'"},
        {"(?P<x-y>a)", 1, "The name of a group consists of letters, digits and underscores"},
        {"a(?<=b)", 2, "Looking behind is not supported"},
        {"a(?i)b", 2, "This kind of group is not supported"},
        {R"(a\q)", 2, "This escape is not supported"},
        {R"(a\)", 2, "The end of the expression can't be escaped"},
        {R"(\u12)", 1, "The number of a character is incomplete"},
        {R"(\ud800)", 1, "There is no character of this number"},
    };
    for (const auto& row : rows) {
        try {
            const RegularExpression expression(row.pattern);
            ADD_FAILURE() << row.pattern;
        } catch (const ExpressionError& error) {
            EXPECT_EQ(error.column(), row.column) << error.what();
            EXPECT_THAT(error.what(), testing::EndsWith(std::string("\n") + row.message));
        }
    }
}

TEST(GherkinRegularExpression, HasLimits) {
    const auto errorOf = [](const std::string& pattern, const std::string& text) {
        try {
            RegularExpression(pattern).search(text);
        } catch (const ExpressionError& error) {
            return std::string(error.what());
        }
        return std::string("none");
    };
    const std::string many(50'000, 'a');
    EXPECT_EQ(errorOf("(?:a|b)*$", many), "none");
    EXPECT_EQ(errorOf("(a+)+b", many.substr(0, 40)),
              "Matching a regular expression takes more than 1000000 steps");
    EXPECT_EQ(errorOf(many, ""), "A regular expression is longer than 20000 bytes");
    EXPECT_THAT(errorOf(std::string(101, '('), ""),
                testing::EndsWith("There are more than 100 groups inside each other"));
    const char* const tooLarge =
        "A regular expression is too large: its repetitions come to more than 20000 parts";
    EXPECT_EQ(errorOf("(?:a{1000}){1000}", ""), tooLarge);
    EXPECT_EQ(errorOf("(?:(?:(?:){1000}){1000}){1000}", ""), tooLarge);
    EXPECT_EQ(errorOf("\xFF", ""), "A regular expression isn't valid UTF-8");
}

TEST(GherkinRegularExpression, KnowsWhatMatchesBeginAndEndWith) {
    const struct {
        const char* pattern;
        const char* prefix;
        const char* suffix;
    } rows[] = {
        {"^abc$", "abc", "abc"}, {R"(^é (\d+) items$)", "é ", " items"},
        {"^(?:ab)+c", "ab", ""}, {"^ab?c$", "a", "c"},
        {"x?y$", "", "y"},       {"a|b$", "", ""},
        {"^a|b", "", ""},        {"^(a)(b)$", "ab", "ab"},
        {"(?m)^ab$", "", ""},    {"(?i)^ab1$", "", "1"},
        {"a(?=b)$", "", ""},     {"abc", "", ""},
    };
    for (const auto& row : rows) {
        const RegularExpression expression(row.pattern);
        EXPECT_EQ(expression.prefix(), row.prefix) << row.pattern;
        EXPECT_EQ(expression.suffix(), row.suffix) << row.pattern;
    }
    EXPECT_EQ(found("a|b$", "ac"), "[a]");
    EXPECT_EQ(found("^a|b", "cb"), "[b]");
}

}  // namespace
}  // namespace Tamrix::Gherkin
