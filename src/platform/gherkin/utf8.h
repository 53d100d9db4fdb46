#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Tamrix::Gherkin {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The number of code points of a text that is valid UTF-8.
int codePointCount(std::string_view text);

/// The offset of the first byte that isn't valid UTF-8; nothing when all are.
std::optional<std::size_t> invalidUtf8(std::string_view text);

/// Takes the first code point off a text that is valid UTF-8 and not empty.
char32_t takeCodePoint(std::string_view* text);

/// Appends a code point in UTF-8.
void appendCodePoint(char32_t codePoint, std::string* text);

/// Whether the code point is whitespace as the Unicode standard has it, or a byte order mark.
bool isSpace(char32_t codePoint);

/// Without the whitespace at its start, its end, or both. The text must be valid UTF-8.
std::string_view trimmedStart(std::string_view text);
std::string_view trimmedEnd(std::string_view text);
std::string_view trimmed(std::string_view text);

}  // namespace Tamrix::Gherkin
