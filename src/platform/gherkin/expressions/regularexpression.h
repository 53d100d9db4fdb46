#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "platform/gherkin/expressions/regularexpressionprogram.h"

namespace Tamrix::Gherkin {

/// A regular expression over UTF-8. Patterns are those of Python as far as step definitions use
/// them: no looking behind, no flags but i, m, s and u, and these only at the start. \d stands for
/// ASCII digits; \w, \b and ignored letter case know other alphabets. By hand, since std::regex
/// knows no UTF-8 and overflows the stack on long texts. A value; matching can be done from several
/// threads.
class TAMRIX_EXPORT RegularExpression {
public:
    /// Throws ExpressionError when the pattern isn't one, and when it is too large.
    explicit RegularExpression(std::string_view pattern);

    /// What a group took: bytes of the text. A group that took no part has none.
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    /// The whole match, and then the groups.
    using Match = std::vector<std::optional<Range>>;

    /// The first match anywhere in the text, which must be valid UTF-8; nothing if there is none.
    /// Throws ExpressionError when it takes too many steps to find out.
    std::optional<Match> search(std::string_view text) const;

    /// Without the whole match.
    int groupCount() const { return m_groupCount; }
    /// From the first group on; empty where a group has no name.
    const std::vector<std::string>& groupNames() const { return m_groupNames; }
    bool hasBackReferences() const { return m_hasBackReferences; }

    /// What every text that matches begins and ends with; maybe nothing.
    const std::string& prefix() const { return m_program.prefix; }
    const std::string& suffix() const { return m_program.suffix; }

private:
    explicit RegularExpression(const ParsedRegularExpression& parsed);

    RegularExpressionProgram m_program;
    int m_groupCount;
    std::vector<std::string> m_groupNames;
    bool m_hasBackReferences;
};

}  // namespace Tamrix::Gherkin
