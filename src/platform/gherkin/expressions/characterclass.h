#pragma once

#include <vector>

namespace Tamrix::Gherkin {

/// Letters, digits and the underscore. Beyond ASCII everything that is neither whitespace nor in
/// the blocks of punctuation and symbols counts as a letter, which is near enough to Unicode's
/// tables.
bool isWordCharacter(char32_t codePoint);

/// The other letter case of a letter of the Latin, Greek and Cyrillic alphabets, as far as the two
/// are a fixed distance apart; else the code point itself.
char32_t otherCase(char32_t codePoint);

/// A set of code points, as regular expressions have it.
class CharacterClass {
public:
    enum class Kind { Digit, Word, Space };

    void add(char32_t first, char32_t last) { m_ranges.push_back({first, last}); }
    /// What \d, \w and \s stand for, or what \D, \W and \S do.
    void add(Kind kind, bool isNegated) { m_kinds.push_back({kind, isNegated}); }
    void negate() { m_isNegated = true; }
    void ignoreCase() { m_ignoresCase = true; }

    bool contains(char32_t codePoint) const;

private:
    struct Range {
        char32_t first;
        char32_t last;
    };
    struct NamedKind {
        Kind kind;
        bool isNegated;
    };

    bool lists(char32_t codePoint) const;

    std::vector<Range> m_ranges;
    std::vector<NamedKind> m_kinds;
    bool m_isNegated = false;
    bool m_ignoresCase = false;
};

}  // namespace Tamrix::Gherkin
