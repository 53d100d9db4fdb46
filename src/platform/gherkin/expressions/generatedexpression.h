#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace Tamrix::Gherkin {

/// A Cucumber Expression that fits a step, made of its text.
struct GeneratedExpression {
    std::string source;
    /// The types of its parameters: "int", "float", "string".
    std::vector<std::string> typeNames;
};

/// What a definition for the step could be written with: numbers and texts in quotation marks
/// become parameters, everything else stands as it is.
TAMRIX_EXPORT GeneratedExpression generateExpression(std::string_view text);

}  // namespace Tamrix::Gherkin
