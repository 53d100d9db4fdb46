#include "platform/gherkin/expressions/generatedexpression.h"

namespace Tamrix::Gherkin {

namespace {

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

/// Part of a word, as are all characters outside of ASCII.
bool isOfWord(char byte) {
    return isDigit(byte) || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           byte == '_' || (static_cast<unsigned char>(byte) & 0x80) != 0;
}

std::size_t digitsFrom(std::string_view text, std::size_t at) {
    while (at < text.size() && isDigit(text[at]))
        ++at;
    return at;
}

/// The end of the text in quotation marks that begins here; the start when none does.
std::size_t endOfQuoted(std::string_view text, std::size_t start) {
    const char mark = text[start];
    if ((mark != '"' && mark != '\'') || (start > 0 && isOfWord(text[start - 1])))
        return start;
    for (std::size_t at = start + 1; at < text.size(); ++at) {
        if (text[at] == '\\')
            ++at;
        else if (text[at] == mark)
            return at + 1;
    }
    return start;
}

/// The same for a number, which is a word of its own.
std::size_t endOfNumber(std::string_view text, std::size_t start, bool* isFloat) {
    if (start > 0 && (isOfWord(text[start - 1]) || text[start - 1] == '.'))
        return start;
    const std::size_t firstDigit = start + (text[start] == '-' ? 1 : 0);
    std::size_t end = digitsFrom(text, firstDigit);
    if (end == firstDigit)
        return start;
    const std::size_t fraction = end + 1;
    *isFloat = end < text.size() && text[end] == '.' && digitsFrom(text, fraction) > fraction;
    if (*isFloat)
        end = digitsFrom(text, fraction);
    return end < text.size() && isOfWord(text[end]) ? start : end;
}

}  // namespace

GeneratedExpression generateExpression(std::string_view text) {
    // What means something else in an expression.
    constexpr std::string_view special = "(){}/\\";
    GeneratedExpression result;
    for (std::size_t at = 0; at < text.size();) {
        bool isFloat = false;
        std::string type = "string";
        std::size_t end = endOfQuoted(text, at);
        if (end == at) {
            end = endOfNumber(text, at, &isFloat);
            type = isFloat ? "float" : "int";
        }
        if (end > at) {
            result.source.append("{").append(type).append("}");
            result.typeNames.push_back(std::move(type));
            at = end;
            continue;
        }
        if (special.find(text[at]) != std::string_view::npos)
            result.source += '\\';
        result.source += text[at++];
    }
    return result;
}

}  // namespace Tamrix::Gherkin
