#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "base/export.h"

namespace Tamrix::Gherkin {

/// A mistake in an expression, or an expression that can't be matched in bearable time.
class TAMRIX_EXPORT ExpressionError : public std::exception {
public:
    /// What went wrong, and where: code points of the expression, from 0; `end` is behind the last.
    struct Mistake {
        /// "Cucumber Expression" and the like.
        std::string_view kind;
        std::string_view expression;
        int begin = 0;
        int end = 0;
        /// A sentence without the full stop.
        std::string message;
        /// What could be meant; may be empty.
        std::string hint;
    };
    explicit ExpressionError(const Mistake& mistake);
    /// One that has no place.
    explicit ExpressionError(std::string text);

    /// Several lines: the expression, with the place marked below it, and what is wrong.
    const char* what() const noexcept override { return m_text.c_str(); }
    /// Where the mistake is, in code points from 1; 0 if it has no place.
    int column() const { return m_column; }

private:
    std::string m_text;
    int m_column = 0;
};

}  // namespace Tamrix::Gherkin
