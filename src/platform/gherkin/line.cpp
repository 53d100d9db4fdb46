#include "platform/gherkin/line.h"

#include <algorithm>
#include <cctype>

#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

Line::Line(int lineNumber, std::string_view lineText)
    : number(lineNumber), text(lineText), content(trimmedStart(lineText)) {
    column = 1 + codePointCount(text.substr(0, text.size() - content.size()));
}

Location Line::locationOf(std::string_view part) const {
    const auto offset = static_cast<std::size_t>(part.data() - content.data());
    return {number, column + codePointCount(content.substr(0, offset))};
}

bool LineReader::next(Line* line) {
    if (m_rest.empty())
        return false;
    const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
    std::string_view text = m_rest.substr(0, end);
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    if (text.ends_with('\r'))
        text.remove_suffix(1);
    *line = Line(++m_number, text);
    return true;
}

std::string_view languageOf(const Line& line) {
    if (!line.content.starts_with('#'))
        return {};
    constexpr std::string_view word = "language";
    std::string_view rest = trimmedStart(line.content.substr(1));
    if (!rest.starts_with(word))
        return {};
    rest = trimmedStart(rest.substr(word.size()));
    if (!rest.starts_with(':'))
        return {};
    const std::string_view code = trimmed(rest.substr(1));
    const bool isCode = std::all_of(code.begin(), code.end(), [](unsigned char byte) {
        return byte == '-' || byte == '_' || (byte < 0x80 && std::isalpha(byte));
    });
    return isCode ? code : std::string_view();
}

namespace {

/// The offset of a comment behind tags: a "#" with whitespace before it.
std::size_t commentBehindTags(std::string_view text) {
    for (std::size_t at = text.find('#'); at != std::string_view::npos;
         at = text.find('#', at + 1)) {
        const std::string_view before = text.substr(0, at);
        if (trimmedEnd(before).size() < before.size())
            return at;
    }
    return text.size();
}

bool hasSpace(std::string_view text) {
    while (!text.empty())
        if (isSpace(takeCodePoint(&text)))
            return true;
    return false;
}

}  // namespace

std::vector<Syntax::Tag> tagsOf(const Line& line,
                                const std::function<void(const Syntax::Tag&)>& invalid) {
    std::vector<Syntax::Tag> tags;
    std::string_view rest = line.content.substr(0, commentBehindTags(line.content));
    Location location = line.location();
    while (!rest.empty()) {
        const std::string_view item = rest.substr(0, rest.find('@', 1));
        const Syntax::Tag tag{location, trimmedEnd(item)};
        if (hasSpace(tag.name))
            invalid(tag);
        else if (tag.name.size() > 1)  // A lonely "@" is ignored on purpose.
            tags.push_back(tag);
        location.column += codePointCount(item);
        rest.remove_prefix(item.size());
    }
    return tags;
}

void appendCells(const Line& line, std::vector<RawCell>* cells) {
    const std::string_view content = line.content;
    std::size_t begin = 1;
    int column = line.column + 1;
    bool hasEscapes = false;
    for (std::size_t at = 1; at < content.size(); ++at) {
        if (content[at] == '\\') {
            hasEscapes = true;
            ++at;
        } else if (content[at] == '|') {
            const std::string_view whole = content.substr(begin, at - begin);
            const std::string_view text = trimmedStart(whole);
            const int indent = codePointCount(whole.substr(0, whole.size() - text.size()));
            cells->push_back({{line.number, column + indent}, trimmedEnd(text), hasEscapes});
            column += codePointCount(whole) + 1;
            begin = at + 1;
            hasEscapes = false;
        }
    }
}

std::string unescapedCell(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char next = at + 1 < text.size() ? text[at + 1] : '\0';
        if (text[at] == '\\' && (next == 'n' || next == '|' || next == '\\')) {
            result += next == 'n' ? '\n' : next;
            ++at;
        } else {
            result += text[at];
        }
    }
    return result;
}

std::string_view fenceOf(const Line& line) {
    for (const std::string_view fence : {"\"\"\"", "```"})
        if (line.content.starts_with(fence))
            return fence;
    return {};
}

}  // namespace Tamrix::Gherkin
