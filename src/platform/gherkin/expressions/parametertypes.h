#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace Tamrix::Gherkin {

/// What may stand in braces in a Cucumber Expression.
struct ParameterType {
    /// Empty for "{}", which takes anything.
    std::string name;
    /// Any of them.
    std::vector<std::string> patterns;
    /// Of all patterns together.
    int groupCount = 0;
};

/// The parameter types by name: those of the language ("int", "float", "word", "string", "" and
/// "byte", "short", "long", "double", "biginteger", "bigdecimal"), and what is added. What a value
/// is turned into is up to the script's language.
class TAMRIX_EXPORT ParameterTypes {
public:
    ParameterTypes();

    /// Throws ExpressionError when the name is taken or holds characters that it may not hold, when
    /// there is no pattern, and when one isn't a regular expression or refers back to groups.
    void add(std::string_view name, std::vector<std::string> patterns);

    /// Null when there is none. The pointer holds until the next add().
    const ParameterType* find(std::string_view name) const;

private:
    std::map<std::string, ParameterType, std::less<>> m_types;
};

}  // namespace Tamrix::Gherkin
