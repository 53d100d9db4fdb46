#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace Tamrix::Gherkin {

/// A tag expression like "@smoke and not (@slow or @wip)". An empty one holds always. A value.
class TAMRIX_EXPORT TagExpression {
public:
    /// Throws ExpressionError.
    explicit TagExpression(std::string_view expression);

    /// Whether the expression holds for something with these tags, given without their "@".
    bool holds(const std::vector<std::string>& tags) const;

private:
    enum class Operation { Tag, Not, And, Or };
    struct Token {
        Operation operation;
        /// Of a tag, with its "@".
        std::string tag;
    };

    class Parser;

    /// Each operation behind what it works on.
    std::vector<Token> m_tokens;
};

}  // namespace Tamrix::Gherkin
