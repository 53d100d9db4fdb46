#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gherkin/document.h"

namespace Tamrix::Gherkin {

/// One line of a feature file.
struct Line {
    int number = 0;
    /// Without its end.
    std::string_view text;
    /// From the first character that isn't whitespace on.
    std::string_view content;
    /// The column of that one.
    int column = 1;

    Line() = default;
    Line(int lineNumber, std::string_view lineText);

    Location location() const { return {number, column}; }
    /// The place of a part of the content, which must lie in it.
    Location locationOf(std::string_view part) const;
};

/// Splits a text into its lines, which end with "\n" or "\r\n".
class LineReader {
public:
    explicit LineReader(std::string_view text) : m_rest(text) {}

    /// False behind the last line; then the line is left alone.
    bool next(Line* line);
    /// The number of the last line that was read.
    int lineNumber() const { return m_number; }

private:
    std::string_view m_rest;
    int m_number = 0;
};

/// The language that a comment like "# language: fr" names; empty if it is none.
std::string_view languageOf(const Line& line);

/// The tags of a line that begins with one. A tag with whitespace in it is given to `invalid` in
/// place of the list.
std::vector<Syntax::Tag> tagsOf(const Line& line,
                                const std::function<void(const Syntax::Tag&)>& invalid);

/// A cell of a table as it stands in the line.
struct RawCell {
    Location location;
    std::string_view text;
    /// Whether there may be escapes in it.
    bool hasEscapes = false;
};

/// Appends the cells of a line that begins with "|". What follows the last "|" doesn't count.
void appendCells(const Line& line, std::vector<RawCell>* cells);

/// A cell's text with its escapes replaced: \n, \| and \\; a backslash before anything else stays.
std::string unescapedCell(std::string_view text);

/// The fence that the line begins with, three quotation marks or three backticks; or empty.
std::string_view fenceOf(const Line& line);

}  // namespace Tamrix::Gherkin
