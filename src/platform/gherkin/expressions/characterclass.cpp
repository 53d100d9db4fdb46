#include "platform/gherkin/expressions/characterclass.h"

#include <algorithm>

#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

namespace {

struct Block {
    char32_t first;
    char32_t last;
};

bool isIn(const Block& block, char32_t codePoint) {
    return codePoint >= block.first && codePoint <= block.last;
}

/// Beyond ASCII.
constexpr Block punctuation[] = {
    {0x80, 0xA9},     {0xAB, 0xB4},     {0xB6, 0xB9},     {0xBB, 0xBF},     {0xD7, 0xD7},
    {0xF7, 0xF7},     {0x2000, 0x206F}, {0x20A0, 0x20CF}, {0x2190, 0x2BFF}, {0x2E00, 0x2E7F},
    {0x3000, 0x3004}, {0x3008, 0x3020}, {0xFE10, 0xFE1F}, {0xFE30, 0xFE6F}, {0xFF00, 0xFF0F},
    {0xFF1A, 0xFF20}, {0xFF3B, 0xFF40}, {0xFF5B, 0xFF65},
};

struct CasePairs {
    Block upper;
    char32_t distance;
};
constexpr CasePairs casePairs[] = {
    {{U'A', U'Z'}, 0x20},   {{0xC0, 0xD6}, 0x20},   {{0xD8, 0xDE}, 0x20},
    {{0x391, 0x3A9}, 0x20}, {{0x410, 0x42F}, 0x20}, {{0x400, 0x40F}, 0x50},
};

}  // namespace

bool isWordCharacter(char32_t codePoint) {
    if (codePoint < 0x80)
        return (codePoint >= U'a' && codePoint <= U'z') ||
               (codePoint >= U'A' && codePoint <= U'Z') ||
               (codePoint >= U'0' && codePoint <= U'9') || codePoint == U'_';
    return !isSpace(codePoint) &&
           std::none_of(std::begin(punctuation), std::end(punctuation),
                        [&](const Block& block) { return isIn(block, codePoint); });
}

char32_t otherCase(char32_t codePoint) {
    for (const CasePairs& pairs : casePairs) {
        if (isIn(pairs.upper, codePoint))
            return codePoint + pairs.distance;
        if (codePoint >= pairs.distance && isIn(pairs.upper, codePoint - pairs.distance))
            return codePoint - pairs.distance;
    }
    return codePoint;
}

bool CharacterClass::lists(char32_t codePoint) const {
    const auto isListed = [&](const Range& range) {
        return codePoint >= range.first && codePoint <= range.last;
    };
    if (std::any_of(m_ranges.begin(), m_ranges.end(), isListed))
        return true;
    return std::any_of(m_kinds.begin(), m_kinds.end(), [&](const NamedKind& named) {
        switch (named.kind) {
            case Kind::Digit:
                return (codePoint >= U'0' && codePoint <= U'9') != named.isNegated;
            case Kind::Word:
                return isWordCharacter(codePoint) != named.isNegated;
            case Kind::Space:
                break;
        }
        return isSpace(codePoint) != named.isNegated;
    });
}

bool CharacterClass::contains(char32_t codePoint) const {
    return (lists(codePoint) || (m_ignoresCase && lists(otherCase(codePoint)))) != m_isNegated;
}

}  // namespace Tamrix::Gherkin
