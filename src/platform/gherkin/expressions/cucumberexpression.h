#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "platform/gherkin/expressions/parametertypes.h"
#include "platform/gherkin/expressions/regularexpression.h"

namespace Tamrix::Gherkin {

/// What a parameter of a step definition got out of a step.
struct Argument {
    /// The name of the parameter type; nothing for a group of a regular expression.
    std::optional<std::string> typeName;
    /// The name of the group of a regular expression, if it has one.
    std::string groupName;
    /// What stands in the step; of a "string" without its quotation marks and with its escapes
    /// replaced. Nothing for a group that took no part.
    std::optional<std::string> text;
    /// What the groups of the parameter type's own patterns took.
    std::vector<std::optional<std::string>> groups;
    /// Bytes of the step's text.
    RegularExpression::Range range;
};

/// A Cucumber Expression. A value; matching can be done from several threads.
class TAMRIX_EXPORT CucumberExpression {
public:
    /// Looks the parameters' types up, which are not needed later. Throws ExpressionError.
    CucumberExpression(std::string_view expression, const ParameterTypes& types);

    /// One argument for each parameter; nothing if the whole text doesn't match. The text must be
    /// valid UTF-8. Throws ExpressionError when matching takes too long.
    std::optional<std::vector<Argument>> match(std::string_view text) const;

    /// What the expression comes to.
    const RegularExpression& regularExpression() const { return m_regularExpression; }

private:
    struct Parameter {
        std::string typeName;
        /// How many groups its patterns have besides the one around it.
        int groupCount;
    };
    struct Compiled {
        std::string pattern;
        std::vector<Parameter> parameters;
    };
    static Compiled compile(std::string_view expression, const ParameterTypes& types);
    explicit CucumberExpression(Compiled compiled);

    RegularExpression m_regularExpression;
    std::vector<Parameter> m_parameters;
};

}  // namespace Tamrix::Gherkin
