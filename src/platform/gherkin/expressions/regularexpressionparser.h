#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gherkin/expressions/characterclass.h"

namespace Tamrix::Gherkin {

/// The syntax tree of a regular expression.
struct RegularExpressionNode {
    enum class Type {
        /// Matches without taking anything.
        Empty,
        Character,
        /// Any character but a line end, or any at all.
        AnyButLineEnd,
        Any,
        Class,
        /// One child after the other.
        Sequence,
        /// The first child that matches.
        Alternatives,
        /// The one child, `minimum` to `maximum` times.
        Repetition,
        /// The one child, whose place is remembered as `number`.
        Group,
        /// What group `number` took.
        BackReference,
        /// Holds if the one child matches, or doesn't.
        LookAhead,
        NegativeLookAhead,
        TextBegin,
        TextEnd,
        LineBegin,
        LineEnd,
        WordBoundary,
        NoWordBoundary
    };

    Type type = Type::Empty;
    char32_t character = 0;
    CharacterClass characters;
    int number = 0;
    int minimum = 0;
    /// Negative: any number of times.
    int maximum = 0;
    /// Whether it takes as little as possible.
    bool isLazy = false;
    std::vector<RegularExpressionNode> children;
};

/// What the parser found.
struct ParsedRegularExpression {
    RegularExpressionNode root;
    /// The number of groups, without the whole match.
    int groupCount = 0;
    /// The names of the groups from 1; empty for those without.
    std::vector<std::string> groupNames;
    bool hasBackReferences = false;
    bool ignoresCase = false;
};

/// Reads a regular expression in the syntax that Python and JavaScript have in common, besides
/// Python's names of groups and flags at the start ("(?P<name>...)", "(?i)"). The pattern must be
/// valid UTF-8. Throws ExpressionError.
ParsedRegularExpression parseRegularExpression(std::string_view pattern);

}  // namespace Tamrix::Gherkin
