#include "platform/gherkin/utf8.h"

#include <algorithm>

namespace Tamrix::Gherkin {

namespace {

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The length of the code point that the text begins with, 0 if it isn't a valid one.
std::size_t sequenceLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return 1;
    // By the standard's table of well-formed sequences: only the second byte has special limits.
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (first >= 0xC2 && first <= 0xDF) {
        length = 2;
    } else if (first >= 0xE0 && first <= 0xEF) {
        length = 3;
        low = first == 0xE0 ? 0xA0 : low;
        high = first == 0xED ? 0x9F : high;
    } else if (first >= 0xF0 && first <= 0xF4) {
        length = 4;
        low = first == 0xF0 ? 0x90 : low;
        high = first == 0xF4 ? 0x8F : high;
    }
    if (length == 0 || text.size() < length)
        return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    if (second < low || second > high)
        return 0;
    const std::string_view rest = text.substr(2, length - 2);
    return std::all_of(rest.begin(), rest.end(), isContinuation) ? length : 0;
}

}  // namespace

int codePointCount(std::string_view text) {
    return static_cast<int>(text.size()) -
           static_cast<int>(std::count_if(text.begin(), text.end(), isContinuation));
}

std::optional<std::size_t> invalidUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequenceLength(text.substr(at));
        if (length == 0)
            return at;
        at += length;
    }
    return std::nullopt;
}

char32_t takeCodePoint(std::string_view* text) {
    const auto first = static_cast<unsigned char>((*text)[0]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t codePoint = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i)
        codePoint = codePoint << 6 | (static_cast<unsigned char>((*text)[i]) & 0x3FU);
    text->remove_prefix(length);
    return codePoint;
}

void appendCodePoint(char32_t codePoint, std::string* text) {
    const auto append = [&](char32_t byte) { text->push_back(static_cast<char>(byte)); };
    if (codePoint < 0x80) {
        append(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        append(0xC0 | codePoint >> 6);
    } else {
        if (codePoint < 0x10000) {
            append(0xE0 | codePoint >> 12);
        } else {
            append(0xF0 | codePoint >> 18);
            append(0x80 | (codePoint >> 12 & 0x3F));
        }
        append(0x80 | (codePoint >> 6 & 0x3F));
    }
    append(0x80 | (codePoint & 0x3F));
}

bool isSpace(char32_t codePoint) {
    if (codePoint < 0x80)
        return codePoint == U' ' || (codePoint >= U'\t' && codePoint <= U'\r');
    return codePoint == 0x85 || codePoint == 0xA0 || codePoint == 0x1680 ||
           (codePoint >= 0x2000 && codePoint <= 0x200A) || codePoint == 0x2028 ||
           codePoint == 0x2029 || codePoint == 0x202F || codePoint == 0x205F ||
           codePoint == 0x3000 || codePoint == 0xFEFF;
}

std::string_view trimmedStart(std::string_view text) {
    for (std::string_view rest = text; !rest.empty(); text = rest)
        if (!isSpace(takeCodePoint(&rest)))
            return text;
    return text;
}

std::string_view trimmedEnd(std::string_view text) {
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && isContinuation(text[start]))
            --start;
        std::string_view last = text.substr(start);
        if (!isSpace(takeCodePoint(&last)))
            break;
        text = text.substr(0, start);
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    return trimmedEnd(trimmedStart(text));
}

}  // namespace Tamrix::Gherkin
