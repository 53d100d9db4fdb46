#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tamrix::Gherkin {

/// The syntax tree of a Cucumber Expression.
struct CucumberExpressionNode {
    enum class Type {
        /// Taken as it stands; without the backslashes of escapes.
        Text,
        /// Text that may be missing.
        Optional,
        /// One of the children, which are of type Alternative.
        Alternation,
        Alternative,
        /// The name of a parameter type.
        Parameter,
        /// The whole.
        Expression
    };

    Type type;
    /// Of Text and Parameter.
    std::string text;
    /// Code points of the expression, from 0.
    int begin = 0;
    int end = 0;
    std::vector<CucumberExpressionNode> children;
};

/// Reads a Cucumber Expression and checks everything but the names of parameters. Throws
/// ExpressionError.
CucumberExpressionNode parseCucumberExpression(std::string_view expression);

}  // namespace Tamrix::Gherkin
