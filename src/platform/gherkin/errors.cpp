#include "platform/gherkin/errors.h"

#include <utility>

namespace Tamrix::Gherkin {

SyntaxError::SyntaxError(const ParseError& error)
    : m_line(error.location.line), m_text(error.message), m_token(error.token) {
    if (error.location.column > 0)
        m_text.insert(0, "column " + std::to_string(error.location.column) + ": ");
}

RunFeatureError::RunFeatureError(int line, std::string text)
    : m_line(line), m_text(std::move(text)) {}

}  // namespace Tamrix::Gherkin
