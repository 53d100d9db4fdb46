#pragma once

#include <string>
#include <vector>

#include "platform/gherkin/expressions/regularexpressionparser.h"

namespace Tamrix::Gherkin {

/// A regular expression as instructions for a backtracking matcher.
struct RegularExpressionProgram {
    enum class Operation {
        /// Takes a character: `character`; any; any but a line end; one of class `index`.
        Character,
        Any,
        AnyButLineEnd,
        Class,
        /// Goes on at `target`.
        Jump,
        /// Goes on here, and at `target` if that fails; or the other way round.
        Split,
        SplitLazily,
        /// Notes the place in slot `index`.
        Save,
        /// Fails unless something was taken since slot `index` was noted.
        Progress,
        /// Takes what group `index` took.
        BackReference,
        /// Matches what follows without taking it, then goes on at `target`; or only if it doesn't.
        LookAhead,
        NegativeLookAhead,
        TextBegin,
        TextEnd,
        LineBegin,
        LineEnd,
        WordBoundary,
        NoWordBoundary,
        /// The end of the expression, or of what is looked at ahead.
        Match
    };

    struct Instruction {
        Operation operation;
        char32_t character = 0;
        int index = 0;
        int target = 0;
    };

    std::vector<Instruction> instructions;
    std::vector<CharacterClass> classes;
    /// Two for each group and the whole match, then those of loops.
    int slotCount = 0;
    bool ignoresCase = false;
    /// What every match begins and ends with, as far as the expression is bound to the text's start
    /// and end.
    std::string prefix;
    std::string suffix;
};

/// Throws ExpressionError when the program would become too long.
RegularExpressionProgram compile(const ParsedRegularExpression& expression);

}  // namespace Tamrix::Gherkin
