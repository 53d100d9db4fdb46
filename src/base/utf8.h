#pragma once

namespace Tamrix {

// UTF-8 as bytes, without decoding it. Overlong forms, surrogates and what lies beyond U+10FFFF are
// no UTF-8. Any thread.

/// The length of the character at the start of [begin, end), which is not empty; 0 when there is no
/// whole one.
inline int utf8CharacterLength(const char* begin, const char* end) {
    const auto byte = [begin](int index) { return static_cast<unsigned char>(begin[index]); };
    const auto isContinuation = [&](int index) { return (byte(index) & 0xC0) == 0x80; };
    const auto available = end - begin;
    if (byte(0) < 0x80)
        return 1;
    if (byte(0) >= 0xC2 && byte(0) <= 0xDF)
        return available >= 2 && isContinuation(1) ? 2 : 0;
    if (byte(0) >= 0xE0 && byte(0) <= 0xEF) {
        if (available < 3 || !isContinuation(1) || !isContinuation(2) ||
            (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xED && byte(1) > 0x9F))
            return 0;
        return 3;
    }
    if (byte(0) >= 0xF0 && byte(0) <= 0xF4) {
        if (available < 4 || !isContinuation(1) || !isContinuation(2) || !isContinuation(3) ||
            (byte(0) == 0xF0 && byte(1) < 0x90) || (byte(0) == 0xF4 && byte(1) > 0x8F))
            return 0;
        return 4;
    }
    return 0;
}

/// The length of the text at the start of [begin, end) that is UTF-8.
inline int validUtf8Length(const char* begin, const char* end) {
    const char* position = begin;
    while (position < end) {
        const int length = utf8CharacterLength(position, end);
        if (length == 0)
            break;
        position += length;
    }
    return static_cast<int>(position - begin);
}

}  // namespace Tamrix
