#include "platform/gherkin/parser.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "platform/gherkin/documentbuilder.h"
#include "platform/gherkin/treetext.h"
#include "support/golden.h"

namespace Tamrix::Gherkin {
namespace {

using Test::treeText;

std::string dataFile(const std::string& name) {
    std::ifstream file(TAMRIX_TEST_SOURCE_DIR "/tests/platform/gherkin/data/" + name,
                       std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at))
        at = text.replace(at, what.size(), by).find(by, at) + by.size();
    return text;
}

TEST(GherkinParser, ReadsFeatureFiles) {
    for (const std::string name : {"everything", "rightplaces", "manyerrors", "toomany"}) {
        const std::string source = dataFile(name + ".feature");
        const std::string text = treeText(parse(source));
        EXPECT_TRUE(Tamrix::Test::compareWithGolden(
            QString::fromStdString("gherkin/" + name + ".txt"), QString::fromStdString(text)));
        // How lines end, and a byte order mark, make no difference.
        EXPECT_EQ(treeText(parse("\xEF\xBB\xBF" + replaced(source, "\n", "\r\n"))), text) << name;
    }
}

TEST(GherkinParser, NamesWhatWasExpected) {
    const struct {
        const char* source;
        const char* errors;
    } rows[] = {
        {"", ""},
        {"\n  # nothing but a comment", "2:1 comment \"  # nothing but a comment\"\n"},
        {"Feature",
         "1:1 expected the end of the file, a line \"# language: ...\", tags or a "
         "feature, got 'Feature'\n"},
        {"# language: en\n@x\n", "3:0 expected tags or a feature, got 'end of file'\n"},
        {"# language: xx\nFeature: x\n", "1:1 there is no such language, got 'xx'\n"},
        {"Feature:\nScenario:\n* a\n\"\"\"\nopen\n",
         "6:0 expected a doc string's fence, got 'end of file'\n"},
        {"Feature:\nScenario:\n* a\n  ```\n  \"\"\"\n  ```\n\"\"\"\n",
         "7:1 expected the end of the file, a table row, a step, tags, examples, a scenario or a "
         "rule, got '\"\"\"'\n"},
        {"Feature:\n@a\nBackground:\n",
         "3:1 expected tags or a rule, got 'Background:'\n4:0 expected tags or a rule, got 'end of "
         "file'\n"},
        {"Feature:\nBackground:\n* a\nExamples:\n",
         "4:1 expected the end of the file, a table row, a doc string's fence, a step, tags, a "
         "scenario or a rule, got 'Examples:'\n"},
        {"Feature:\nScenario:\nExamples:\n|a|\nGiven b\n",
         "5:1 expected the end of the file, a table row, tags, examples, a scenario or a rule, got "
         "'Given b'\n"},
        {"Feature:\nScenario:\n* é\n | é | b |\n | a \\| b |\n",
         "5:2 expected as many cells as in the table's first row, 2, not 1, got '| a \\| b |'\n"},
        {"@a\xC2\xA0"
         "b @c\nFeature:",
         "1:1 a tag may not contain whitespace, got '@a\xC2\xA0"
         "b'\n"},
        {"Feature: x\n  \xC3\xA9\xC3\x28", "2:4 the text isn't valid UTF-8, got 'byte 0xC3'\n"},
        {"\xED\xA0\x80", "1:1 the text isn't valid UTF-8, got 'byte 0xED'\n"},
        {"\xF4\x90\x80\x80", "1:1 the text isn't valid UTF-8, got 'byte 0xF4'\n"},
        {"\xC0\x80", "1:1 the text isn't valid UTF-8, got 'byte 0xC0'\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(treeText(parse(row.source)), row.errors) << row.source;
}

TEST(GherkinParser, HasLimits) {
    const auto errorOf = [](std::string source) {
        const ParseResult result = parse(std::move(source));
        return result.errors.empty() ? "none"
                                     : result.errors[0].message + ", got '" +
                                           result.errors[0].token.substr(0, 16) + "'";
    };
    EXPECT_EQ(errorOf(std::string(maxFeatureFileSize + 1, '\n')),
              "the file is larger than 67108864 bytes, got '67108865 bytes'");
    EXPECT_EQ(errorOf("Feature: " + std::string(maxLineSize, 'x')),
              "the line is longer than 8388608 bytes, got 'Feature: xxxxxxx'");
    std::string manyCells = "Feature: x\nScenario: y\n* z\n";
    while (manyCells.size() < DocumentBuilder::maxItems + 100)
        manyCells += std::string(100'000, '|') + "\n";
    EXPECT_EQ(errorOf(manyCells),
              "the file holds more than 4000000 steps, cells, tags and lines of texts, got ''");
    // A token is cut between two characters.
    std::string longText = "x";
    while (longText.size() < 300)
        longText += "é";
    EXPECT_EQ(parse(longText).errors[0].token, longText.substr(0, 199) + "...");
}

TEST(GherkinParser, DocumentCanBeMoved) {
    ParseResult result = parse("Feature: moved\nScenario: s\n* a\n| x\\|y |\n");
    const Document document = std::move(result.document);
    EXPECT_EQ(document.feature()->name, "moved");
    EXPECT_EQ(document.feature()->scenarios[0].steps[0].table[0].cells[0].text, "x|y");
}

}  // namespace
}  // namespace Tamrix::Gherkin
