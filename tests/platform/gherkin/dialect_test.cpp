#include "platform/gherkin/dialect.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/gherkin/parser.h"

namespace Tamrix::Gherkin {
namespace {

std::string_view firstKeyword(const DialectRow& row, KeywordList list) {
    const std::string_view keywords = row.keywords[static_cast<std::size_t>(list)];
    return keywords.substr(0, keywords.find('|'));
}

TEST(GherkinDialect, EveryLanguageReadsItsOwnWords) {
    EXPECT_GT(dialectRows.size(), 75U);
    for (const DialectRow& row : dialectRows) {
        std::string source = "# language: " + std::string(row.code) + "\n";
        const auto add = [&](KeywordList list, const char* rest) {
            source += std::string(firstKeyword(row, list)) + rest + "\n";
        };
        add(KeywordList::Feature, ": f");
        add(KeywordList::Background, ": b");
        add(KeywordList::Given, "given");
        add(KeywordList::ScenarioOutline, ": s");
        add(KeywordList::When, "when");
        add(KeywordList::Then, "then");
        add(KeywordList::And, "and");
        add(KeywordList::But, "but");
        add(KeywordList::Examples, ": e");
        add(KeywordList::Rule, ": r");
        add(KeywordList::Scenario, ": inside");
        const ParseResult result = parse(source);
        ASSERT_TRUE(result.errors.empty()) << source << result.errors[0].message;
        const Syntax::Feature& feature = *result.document.feature();
        EXPECT_EQ(feature.language, row.code);
        ASSERT_NE(feature.background, nullptr) << source;
        EXPECT_EQ(feature.background->steps.size(), 1U) << source;
        ASSERT_EQ(feature.scenarios.size(), 1U) << source;
        EXPECT_EQ(feature.scenarios[0].steps.size(), 4U) << source;
        EXPECT_EQ(feature.scenarios[0].examples.size(), 1U) << source;
        ASSERT_EQ(feature.rules.size(), 1U) << source;
        EXPECT_EQ(feature.rules[0].scenarios.size(), 1U) << source;
    }
}

TEST(GherkinDialect, TakesTheLongestKeyword) {
    const Dialect french = *Dialect::find("fr");
    const struct {
        const char* line;
        const char* keyword;
        KeywordType type;
    } rows[] = {
        {"Étant donné que rien", "Étant donné que ", KeywordType::Context},
        {"Étant donné rien", "Étant donné ", KeywordType::Context},
        {"Et qu'il", "Et qu'", KeywordType::Conjunction},
        {"* rien", "* ", KeywordType::Unknown},
        {"*rien", "", KeywordType::Unknown},
        {"Given nothing", "", KeywordType::Unknown},
    };
    for (const auto& row : rows) {
        const Dialect::StepKeyword keyword = french.step(row.line);
        EXPECT_EQ(keyword.text, row.keyword) << row.line;
        EXPECT_EQ(keyword.type, row.type) << row.line;
    }
    // "Dato " and its forms are one kind; a word of two kinds is none.
    EXPECT_EQ(Dialect::find("tlh")->step("DaH ghu' bejlu' x").type, KeywordType::Context);
    EXPECT_EQ(french.title(TitleKind::Scenario, "Plan du scénario: x"), "Plan du scénario");
    EXPECT_EQ(french.title(TitleKind::Scenario, "Scénario : x"), "");
    EXPECT_FALSE(Dialect::find("fr-XX"));
}

}  // namespace
}  // namespace Tamrix::Gherkin
