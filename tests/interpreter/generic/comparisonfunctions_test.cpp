#include "interpreter/generic/comparisonfunctions.h"

#include <QTemporaryDir>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/apitest.h"
#include "interpreter/generic/comparisonoptions.h"
#include "support/files.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;
using List = ScriptArgument::List;

class ComparisonFunctions : public ApiTest {
protected:
    ComparisonFunctions() {
        ScriptContext::setCurrent(&reported);
        EXPECT_TRUE(writeFile(path("crlf"), "a\r\nb\r\n"));
        EXPECT_TRUE(writeFile(path("lf"), "a\nb\n"));
        EXPECT_TRUE(writeFile(path("one.json"), "{\"a\": [1, 2]}"));
        EXPECT_TRUE(writeFile(path("other.json"), "{\"a\": [1, 3]}"));
        EXPECT_TRUE(writeFile(path("one.xml"), "<a><b x='1'> t</b><c/></a>"));
        EXPECT_TRUE(writeFile(path("other.xml"), "<a><c/><b x='2'>t</b></a>"));
    }

    QString path(const char* name) const { return folder.filePath(name); }

    /// Calls a comparison; its error or result, then all results as "type|message|detail".
    QString compare(ScriptContext::Function function, const char* expected, const char* actual,
                    const ScriptArgument::Map& options = {}) {
        report.entries.clear();
        List arguments = {text(path(expected)), text(path(actual))};
        if (!options.empty())
            arguments.push_back(map(options));
        reported.call(function, arguments);
        QString outcome =
            reported.hasError() ? reported.errorMessage() : reported.result->toString();
        for (const ResultAdded& entry : report.results()) {
            outcome += QStringLiteral("\n%1|%2|%3")
                           .arg(QString::number(entry.type), entry.message, entry.detail);
            EXPECT_TRUE(entry.comment.isEmpty());
            EXPECT_EQ(entry.value, -1);
            EXPECT_EQ(entry.callStack.front().lineNumber(), 7);
        }
        return outcome;
    }

    QTemporaryDir folder;
    RecordingReport report;
    TestResult result{&report};
    FakeContext reported{&result};
};

TEST_F(ComparisonFunctions, WrongArgumentsAreErrors) {
    const SharedPtr<ScriptArgument> file = text(path("lf"));
    for (const auto function : {testCompareTextFiles, testCompareXMLFiles}) {
        expectRefusals({
            {function, {file}, "Expected two or three arguments (supplied arguments: 1)"},
            {function, {integer(1), file}, "1st argument expected file path to expected file"},
            {function, {file, integer(1)}, "2nd argument expected file path to actual file"},
            {function, {file, file, boolean(true)}, "3rd argument expected map"},
        });
    }
    expectRefusals({
        {testCompareJSONFiles, {}, "Expected two arguments (supplied arguments: 0)"},
        {testCompareJSONFiles,
         {integer(1), file},
         "First argument expected file path to expected file"},
        {testCompareJSONFiles,
         {file, integer(1)},
         "Second argument expected file path to actual file"},
    });
}

TEST_F(ComparisonFunctions, FilesThatCanNotBeReadAreErrorsWithoutResult) {
    const QString why = "No such file or directory";
    EXPECT_EQ(compare(testCompareTextFiles, "none", "lf"),
              QString("Expected file '%1' can not be read: '%2'").arg(path("none"), why));
    EXPECT_EQ(compare(testCompareTextFiles, "lf", "none"),
              QString("Actual file '%1' can not be read: '%2'").arg(path("none"), why));
    for (const auto function : {testCompareJSONFiles, testCompareXMLFiles}) {
        EXPECT_EQ(compare(function, "lf", "none"),
                  QString("File '%1' can not be read: %2").arg(path("none"), why));
    }
}

TEST_F(ComparisonFunctions, Outcomes) {
    EXPECT_EQ(compare(testCompareTextFiles, "crlf", "lf"),
              "true\n10|Plain Text Comparison|'crlf' and 'lf' are equal.");
    EXPECT_EQ(compare(testCompareTextFiles, "crlf", "lf", {{"strictLineEndings", boolean(true)}}),
              "false\n11|Plain Text Comparison|'crlf' and 'lf' are different. Diff:\n"
              "- a\n- b\n+ a\n+ b\n");
    EXPECT_EQ(compare(testCompareJSONFiles, "one.json", "one.json"),
              "true\n10|JSON Comparison|Files are equal");
    EXPECT_EQ(compare(testCompareJSONFiles, "one.json", "other.json"),
              "false\n11|JSON Comparison|Files differ: Different values: '2' not equal to '3'  "
              "Diff:\n  {\n-    \"a\" : [ 1, 2 ]\n+    \"a\" : [ 1, 3 ]\n  }\n  \n");
    EXPECT_TRUE(compare(testCompareJSONFiles, "one.json", "lf")
                    .contains("\n11|JSON Comparison|Files differ: Invalid JSON: "));
    EXPECT_EQ(compare(testCompareXMLFiles, "one.xml", "other.xml"),
              "false\n11|XML Comparison|Files differ: Unable to find matching element: \"b\", "
              "Row: 1. Reason: No matching tag name found.");
    EXPECT_EQ(compare(testCompareXMLFiles, "one.xml", "other.xml",
                      {{"ignoreNodeOrder", boolean(true)},
                       {"filteredAttributes", list({text("x"), text("y")})}}),
              "true\n10|XML Comparison|Files are equal");
    EXPECT_TRUE(compare(testCompareXMLFiles, "one.xml", "other.xml",
                        {{"ignoreNodeOrder", boolean(true)},
                         {"filteredAttributes", list({text("x")})},
                         {"whitespaceInTextHandling", text("preserve")}})
                    .endsWith("Text does not match."));
}

TEST_F(ComparisonFunctions, AFailureNeitherThrowsNorStops) {
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::ThrowOnFailure, true);
    EXPECT_TRUE(compare(testCompareJSONFiles, "one.json", "other.json").startsWith("false\n"));
    TestSettingsType::s_vpOptions = VerificationOptions();
}

TEST_F(ComparisonFunctions, FaultyOptionsAreWarnings) {
    EXPECT_EQ(compare(testCompareTextFiles, "crlf", "lf",
                      {{"strictLineEnding", boolean(true)}, {"strictLineEndings", integer(1)}}),
              "true\n14|Unknown option: 'strictLineEnding'|\n"
              "14|Option 'strictLineEndings' expected boolean|\n"
              "10|Plain Text Comparison|'crlf' and 'lf' are equal.");
    EXPECT_EQ(compare(testCompareXMLFiles, "one.xml", "one.xml",
                      {{"ignoreWhite", boolean(true)},
                       {"whitespaceInTextHandling", integer(1)},
                       {"whitespaceInValuesHandling", text("keep")},
                       {"filteredAttributes", text("x")},
                       {"filteredElements", list({text("x"), integer(1)})}}),
              "true\n14|Unknown option: 'ignoreWhite'|\n"
              "14|Option 'whitespaceInTextHandling' expected string|\n"
              "14|Whitespace handling option expected values 'preserve', 'normalize' or 'trim' but "
              "got 'keep' defaulting to 'preserve'|\n"
              "14|Option 'filteredAttributes' expected string list|\n"
              "14|Option 'filteredElements' expected string list (list item is not a string)|\n"
              "10|XML Comparison|Files are equal");
    bool normalize = true;
    bool trim = true;
    parseWhitespaceHandlingOptions(&result, "keep", &normalize, &trim, QString());
    EXPECT_EQ(
        report.results().back().message,
        "Whitespace handling option expected values 'preserve', 'normalize' or 'trim' but got "
        "'keep' using defaults.");
    EXPECT_TRUE(normalize && trim);
}

}  // namespace
}  // namespace Tamrix
