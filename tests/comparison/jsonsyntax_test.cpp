#include "comparison/jsonsyntax.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(JsonSyntax, TakesEveryFormOfJson) {
    const QByteArray texts[] = {
        "[]",
        " \t\r\n{}\n",
        "0",
        "\"a\"",
        "[null,true,false]",
        "[0,-0,1,-12,10.25,0.5,-0.0]",
        "[1e1,1E1,1e+1,1E-01,0e0,1.5e007]",
        R"(["","a\"\\\/\b\f\n\r\tz"])",
        R"(["\u0000\u00e4\uFFFF\ud83d\uDE00"])",
        "[\"\x7f\xc3\xa4\xe2\x80\xa8\xf0\x9f\x98\x80\"]",
        R"({"":0,"a":[{}],"a":{"b":[[],{}]}} )",
        QByteArray("[").repeated(100000) + QByteArray("]").repeated(100000),
    };
    for (const QByteArray& text : texts) {
        const JsonProblem problem = jsonProblem(text);
        EXPECT_EQ(problem.reason, "") << text.left(80).constData();
        EXPECT_EQ(problem.line, 0);
    }
}

TEST(JsonSyntax, RefusesWhatIsNone) {
    const char* const behind = "Extra text behind the value.";
    const char* const noValue = "Missing value.";
    const char* const noDigit = "Missing digit in a number.";
    const char* const inArray = "Missing ',' or ']' in an array.";
    const char* const inObject = "Missing ',' or '}' in an object.";
    const char* const noName = "Missing name in an object.";
    const char* const noColon = "Missing ':' behind a name.";
    const char* const escape = "Bad escape sequence in a string.";
    const char* const half = "Half of a surrogate pair in a string.";
    const char* const control = "Control character in a string.";
    const char* const noEnd = "A string has no end.";
    const char* const comment = "Comments are not allowed.";
    const struct {
        QByteArray text;
        int line;
        int column;
        const char* reason;
    } rows[] = {
        // The whole
        {"", 1, 1, noValue},
        {" \r\n \r \n", 4, 1, noValue},
        {"[1]x", 1, 4, behind},
        {"[1]]", 1, 4, behind},
        {"{}}", 1, 3, behind},
        {"1 2", 1, 3, behind},
        {"{\"a\":1}\n{\"a\":2}", 2, 1, behind},
        {QByteArray("[1]\0", 4), 1, 4, behind},
        {QByteArray("\0", 1), 1, 1, noValue},
        {"\f[]", 1, 1, noValue},
        {"[\v1]", 1, 2, noValue},
        {"\xef\xbb\xbf\xef\xbb\xbf[]", 1, 1, noValue},
        {"<a/>", 1, 1, noValue},
        {"'a'", 1, 1, noValue},
        // Comments
        {"// a\n[]", 1, 1, comment},
        {"[1 /* a */]", 1, 4, inArray},
        {"[/**/1]", 1, 2, comment},
        {"{\"a\":/**/1}", 1, 6, comment},
        {"[1]\n# a", 2, 1, behind},
        {"[1]// a", 1, 4, comment},
        // Words
        {"[tru]", 1, 2, noValue},
        {"[True]", 1, 2, noValue},
        {"[nul", 1, 2, noValue},
        {"[nulll]", 1, 6, inArray},
        {"[NaN]", 1, 2, noValue},
        {"[Infinity]", 1, 2, noValue},
        {"[-Infinity]", 1, 3, noDigit},
        {"[undefined]", 1, 2, noValue},
        // Numbers
        {"[01]", 1, 3, "A number begins with '0'."},
        {"[-01]", 1, 4, "A number begins with '0'."},
        {"[00]", 1, 3, "A number begins with '0'."},
        {"[-]", 1, 3, noDigit},
        {"[--1]", 1, 3, noDigit},
        {"[+1]", 1, 2, noValue},
        {"[.5]", 1, 2, noValue},
        {"[-.5]", 1, 3, noDigit},
        {"[1.]", 1, 4, noDigit},
        {"[1.e1]", 1, 4, noDigit},
        {"[1e]", 1, 4, noDigit},
        {"[1e+]", 1, 5, noDigit},
        {"[1e+-1]", 1, 5, noDigit},
        {"[1eE1]", 1, 4, noDigit},
        {"[1.2.3]", 1, 5, inArray},
        {"[1 000]", 1, 4, inArray},
        {"[1_0]", 1, 3, inArray},
        {"[0x1f]", 1, 3, inArray},
        {"[1a]", 1, 3, inArray},
        {"[\xef\xbc\x91]", 1, 2, noValue},
        // Texts
        {"[\"a]", 1, 2, noEnd},
        {"[\"", 1, 2, noEnd},
        {"\"\\", 1, 2, escape},
        {R"(["\x41"])", 1, 3, escape},
        {R"(["\'"])", 1, 3, escape},
        {R"(["\U0041"])", 1, 3, escape},
        {R"(["\u004"])", 1, 3, escape},
        {R"(["\u00g1"])", 1, 3, escape},
        {R"(["\u)", 1, 3, escape},
        {R"(["\ud83d"])", 1, 3, half},
        {R"(["\ud83d\n"])", 1, 3, half},
        {R"(["\ud83da"])", 1, 3, half},
        {R"(["\ud83d\u0041"])", 1, 3, half},
        {R"(["\ude00"])", 1, 3, half},
        {"[\"a\nb\"]", 1, 4, control},
        {"[\"\t\"]", 1, 3, control},
        {QByteArray("[\"a\0b\"]", 7), 1, 4, control},
        {"{\"\x1f\":1}", 1, 3, control},
        {"['a']", 1, 2, noValue},
        {"[a]", 1, 2, noValue},
        // Arrays
        {"[", 1, 2, noValue},
        {"[1", 1, 3, inArray},
        {"[1,", 1, 4, noValue},
        {"[1,]", 1, 4, noValue},
        {"[,1]", 1, 2, noValue},
        {"[1,,2]", 1, 4, noValue},
        {"[1 2]", 1, 4, inArray},
        {"[1:2]", 1, 3, inArray},
        {"[1}", 1, 3, inArray},
        {"[\"a\" \"b\"]", 1, 6, inArray},
        {"[\n1,\n2 3]", 3, 3, inArray},
        {QByteArray("[").repeated(100000), 1, 100001, noValue},
        // Objects
        {"{", 1, 2, noName},
        {"{]", 1, 2, noName},
        {"{a:1}", 1, 2, noName},
        {"{'a':1}", 1, 2, noName},
        {"{1:1}", 1, 2, noName},
        {"{null:1}", 1, 2, noName},
        {"{\"a\"", 1, 5, noColon},
        {"{\"a\"}", 1, 5, noColon},
        {"{\"a\" 1}", 1, 6, noColon},
        {"{\"a\",1}", 1, 5, noColon},
        {"{\"a\":}", 1, 6, noValue},
        {"{\"a\"::1}", 1, 6, noValue},
        {"{\"a\":1", 1, 7, inObject},
        {"{\"a\":1,}", 1, 8, noName},
        {"{\"a\":1,,\"b\":2}", 1, 8, noName},
        {"{,\"a\":1}", 1, 2, noName},
        {"{\"a\":1 \"b\":2}", 1, 8, inObject},
        {"{\"a\":1]", 1, 7, inObject},
        {"{\"a\":[}", 1, 7, noValue},
    };
    for (const auto& row : rows) {
        const JsonProblem problem = jsonProblem(row.text);
        EXPECT_EQ(problem.reason, row.reason) << row.text.left(80).constData();
        EXPECT_EQ(problem.line, row.line) << row.text.left(80).constData();
        EXPECT_EQ(problem.column, row.column) << row.text.left(80).constData();
    }
}

}  // namespace
}  // namespace Tamrix
