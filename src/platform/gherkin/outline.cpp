#include "platform/gherkin/outline.h"

#include "platform/gherkin/errors.h"

namespace Tamrix::Gherkin {

const Syntax::TableCell* RowValues::valueOf(std::string_view name) const {
    for (std::size_t i = 0; i < m_header->cells.size(); ++i)
        if (m_header->cells[i].text == name)
            return &m_row->cells[i];
    return nullptr;
}

std::string RowValues::filledIn(std::string_view text) const {
    std::string result;
    while (m_header) {
        const std::size_t begin = text.find('<');
        const std::size_t end = text.find('>', begin);
        if (begin == std::string_view::npos || end == std::string_view::npos)
            break;
        // Of "a < b <name>" only the last bracket opens a name.
        const std::size_t open = text.rfind('<', end);
        const std::string_view name = text.substr(open + 1, end - open - 1);
        const Syntax::TableCell* const value = valueOf(name);
        result += text.substr(0, value ? open : end + 1);
        if (value)
            result += value->text;
        text.remove_prefix(end + 1);
        if (result.size() > maxFilledSize)
            throw RunFeatureError(m_row->location.line,
                                  "the values of the row make a text longer than " +
                                      std::to_string(maxFilledSize) + " bytes");
    }
    result += text;
    return result;
}

}  // namespace Tamrix::Gherkin
