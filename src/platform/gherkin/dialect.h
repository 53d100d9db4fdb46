#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "platform/gherkin/document.h"

namespace Tamrix::Gherkin {

/// The lists of keywords that every spoken language has.
enum class KeywordList {
    Feature,
    Rule,
    Background,
    Scenario,
    ScenarioOutline,
    Examples,
    Given,
    When,
    Then,
    And,
    But
};

/// One spoken language as it is published. Keywords of one list are separated by "|"; those of
/// steps end with a space where one must follow.
struct DialectRow {
    std::string_view code;
    std::string_view name;
    std::string_view nativeName;
    std::array<std::string_view, 11> keywords;
};

/// All languages, in the order of their codes.
extern const std::span<const DialectRow> dialectRows;

/// What begins with a keyword and a colon. Scenarios and outlines are one kind: whether there are
/// examples tells them apart.
enum class TitleKind { Feature, Rule, Background, Scenario, Examples };

/// The keywords of one spoken language. A value, whose texts live as long as the program.
class Dialect {
public:
    struct StepKeyword {
        /// With the space at its end, if there is one; empty if none was found.
        std::string_view text;
        KeywordType type = KeywordType::Unknown;
    };

    /// The language of a code like "en" or "zh-CN", nothing when there is no such language.
    static std::optional<Dialect> find(std::string_view code);

    std::string_view code() const { return m_code; }

    /// The keyword of the kind that the line begins with and that a colon follows; empty if none
    /// does.
    std::string_view title(TitleKind kind, std::string_view line) const;

    /// The longest keyword of a step that the line begins with.
    StepKeyword step(std::string_view line) const;

private:
    explicit Dialect(const DialectRow& row);
    void addStepKeyword(std::string_view keyword, KeywordType type);

    std::string_view m_code;
    std::array<std::vector<std::string_view>, 5> m_titles;
    std::vector<StepKeyword> m_steps;
};

}  // namespace Tamrix::Gherkin
