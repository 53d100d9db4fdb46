#pragma once

#include <string>
#include <string_view>

#include "base/export.h"
#include "platform/gherkin/document.h"

namespace Tamrix::Gherkin {

/// The longest text that may come of filling in a row, in bytes.
constexpr std::size_t maxFilledSize = std::size_t(1) << 20;

/// Substitutes the values of a row of examples for the placeholders of its columns, "<name>".
/// Without a row texts stay as they are. What is filled in isn't searched again.
class TAMRIX_EXPORT RowValues {
public:
    RowValues() = default;
    /// Both belong to the document.
    RowValues(const Syntax::TableRow* header, const Syntax::TableRow* row)
        : m_header(header), m_row(row) {}

    /// Throws RunFeatureError with the row's line when the text becomes too long.
    std::string filledIn(std::string_view text) const;

private:
    const Syntax::TableCell* valueOf(std::string_view name) const;

    const Syntax::TableRow* m_header = nullptr;
    const Syntax::TableRow* m_row = nullptr;
};

}  // namespace Tamrix::Gherkin
