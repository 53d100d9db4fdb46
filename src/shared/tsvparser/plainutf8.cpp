#include "shared/tsvparser/plainutf8.h"

#include <cstdint>
#include <cstring>

namespace Tamrix {

namespace {

/// The length of the sequence at the beginning, which is not ASCII; 0 when it is wrong.
std::size_t sequenceLength(const unsigned char* at, std::size_t left) {
    struct Form {
        unsigned char mask;
        unsigned char lead;
        std::size_t length;
        std::uint32_t smallest;
    };
    static constexpr Form forms[] = {
        {0xe0, 0xc0, 2, 0x80}, {0xf0, 0xe0, 3, 0x800}, {0xf8, 0xf0, 4, 0x10000}};
    constexpr std::uint32_t byteOrderMark = 0xfeff;
    for (const Form& form : forms) {
        if ((at[0] & form.mask) != form.lead)
            continue;
        if (left < form.length)
            return 0;
        std::uint32_t point = at[0] & static_cast<unsigned char>(~form.mask);
        for (std::size_t i = 1; i < form.length; ++i) {
            if ((at[i] & 0xc0) != 0x80)
                return 0;
            point = point << 6 | (at[i] & 0x3f);
        }
        const bool isSurrogate = point >= 0xd800 && point <= 0xdfff;
        const bool isGood =
            point >= form.smallest && point <= 0x10ffff && !isSurrogate && point != byteOrderMark;
        return isGood ? form.length : 0;
    }
    return 0;
}

}  // namespace

bool isPlainUtf8(const char* bytes, std::size_t size) {
    const auto* const text = reinterpret_cast<const unsigned char*>(bytes);
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::size_t at = 0;
    while (at < size) {
        std::uint64_t words[4];
        if (size - at >= sizeof words) {
            std::memcpy(words, text + at, sizeof words);
            if (((words[0] | words[1] | words[2] | words[3]) & highBits) == 0) {
                at += sizeof words;
                continue;
            }
        }
        // Up to the end of the first other sequence, or of the text.
        while (at < size && text[at] < 0x80)
            ++at;
        while (at < size && text[at] >= 0x80) {
            const std::size_t length = sequenceLength(text + at, size - at);
            if (length == 0)
                return false;
            at += length;
        }
    }
    return true;
}

}  // namespace Tamrix
