#include "platform/gherkin/expressions/expressionerror.h"

#include <utility>

namespace Tamrix::Gherkin {

ExpressionError::ExpressionError(const Mistake& mistake) : m_column(mistake.begin + 1) {
    m_text.append("This ").append(mistake.kind).append(" has a problem at column ");
    m_text.append(std::to_string(m_column)).append(":\n\n");
    m_text.append(mistake.expression).append("\n");
    m_text.append(static_cast<std::size_t>(mistake.begin), ' ');
    const int width = mistake.end - mistake.begin;
    m_text += '^';
    if (width > 1)
        m_text.append(static_cast<std::size_t>(width) - 2, '-').append("^");
    m_text.append("\n").append(mistake.message);
    if (!mistake.hint.empty())
        m_text.append(".\n").append(mistake.hint);
}

ExpressionError::ExpressionError(std::string text) : m_text(std::move(text)) {}

}  // namespace Tamrix::Gherkin
