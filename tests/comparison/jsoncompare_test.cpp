#include "comparison/jsoncompare.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {

namespace {

struct Case {
    const char* expected;
    const char* actual;
    /// How the message starts; empty for equal values.
    const char* message;
};

TEST(JsonCompare, NamesTheFirstDifference) {
    const Case cases[] = {
        {R"({"a":1,"b":{"c":[null,true]}})", R"({ "b": {"c": [null, true]}, "a": 1 })", ""},
        {"[1,2]", "[2,1]", "Different values: '1' not equal to '2'"},
        {R"(["a"])", R"(["b"])", "Different values: 'a' not equal to 'b'"},
        {"[true]", "[false]", "Different values: 'true' not equal to 'false'"},
        {"[1]", "[1,2]", "Different number of array elements: 1 not equal to 2"},
        {R"({"a":1})", "{}", "Different number of name-value pairs: 1 not equal to 0"},
        {R"({"a":1})", R"({"b":1})", "Name missing: 'a'"},
        {"[null]", "[0]", "Type mismatch: 'null' not equal to 'signed integer number'"},
        {"[1]", "[1.0]",
         "Type mismatch: 'signed integer number' not equal to 'floating point number'"},
        {"[1]", "[18446744073709551615]",
         "Type mismatch: 'signed integer number' not equal to 'unsigned integer number'"},
        {"[{}]", R"(["x"])", "Type mismatch: 'object' not equal to 'string'"},
        {"[0.30000000000000004]", "[0.3]", ""},
        {"[0.0]", "[-0.0]", ""},
        {"[0.30000001]", "[0.3]", "Different values: 0.3000000"},
        {"[1", "[2", "Invalid JSON: * Line 1, Column 3"},
        {"[1]", "[1,]", "Invalid JSON: "},
        {"[1] // one", "[1]", "Invalid JSON: * Line 1, Column 5\n  Comments are not allowed.\n"},
        {"[/* one */ 1]", "[1]", "Invalid JSON: "},
        {"[1]\n[2]", "[1]\n[3]",
         "Invalid JSON: * Line 2, Column 1\n  Extra text behind the value."},
        {"[01]", "[1]", "Invalid JSON: * Line 1, Column 3\n  A number begins with '0'."},
        {"0", "0", "Invalid JSON: "},
        {"", "", "Invalid JSON: "},
    };
    for (const Case& each : cases) {
        QString message;
        EXPECT_EQ(compareJson(each.expected, each.actual, &message), !*each.message)
            << each.expected << " " << each.actual;
        EXPECT_TRUE(*each.message ? message.startsWith(each.message) : message.isEmpty())
            << each.expected << " " << each.actual << ": " << qPrintable(message);
    }
}

TEST(JsonCompare, TakesDeepValuesUpToTheReadersLimit) {
    const auto nested = [](const char* open, const char* close, int depth) {
        return QString(open).repeated(depth) + "1" + QString(close).repeated(depth);
    };
    QString message;
    // Looking at the members of each level from both sides would never end.
    const QString deep = nested("{\"a\":", "}", 900);
    EXPECT_TRUE(compareJson(deep, deep, &message)) << qPrintable(message);
    const QString tooDeep = nested("[", "]", 100000);
    EXPECT_FALSE(compareJson("[]", tooDeep, &message));
    EXPECT_EQ(message, "Invalid JSON: Exceeded stackLimit in readValue().");
}

TEST(JsonCompare, DecodesUtf8Only) {
    const struct {
        QByteArray bytes;
        const char* problem;
    } rows[] = {
        {"[\"\xc3\xa4\"]", ""},
        {"\xef\xbb\xbf[\"\xc3\xa4\"]", ""},
        {QByteArray("\xff\xfe[\0\xe4\0]\0", 8), ""},
        {"[\"a\",\r\n\"\xe4\"]", "Invalid JSON: * Line 2, Column 2\n  A byte that is not UTF-8.\n"},
    };
    for (const auto& row : rows) {
        QString text;
        QString problem;
        EXPECT_EQ(decodeJson(row.bytes, &text, &problem), !*row.problem);
        EXPECT_EQ(problem, row.problem);
        EXPECT_EQ(text.contains(QChar(0xe4)), !*row.problem) << row.bytes.constData();
    }
}

TEST(JsonCompare, FormatsInOneLayout) {
    QString one;
    QString other;
    EXPECT_TRUE(formatJson(R"({"b":[1,2],"a":"ä"})", &one));
    EXPECT_TRUE(formatJson("{ \"a\": \"ä\",\n\n \"b\": [ 1, 2 ] }", &other));
    EXPECT_EQ(one, other);
    EXPECT_FALSE(formatJson("[", &one));
}

}  // namespace

}  // namespace Tamrix
